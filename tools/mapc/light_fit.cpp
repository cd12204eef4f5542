#include "mapc/light_fit.h"

namespace {

struct Gradient {
    double u = 0;
    double v = 0;
};

struct Moments {
    double uu = 0, uv = 0, vv = 0, ul = 0, vl = 0;

    void Add(double u, double v, double light) {
        uu += u * u;
        uv += u * v;
        vv += v * v;
        ul += u * light;
        vl += v * light;
    }

    Gradient BestGradient() const {
        const double determinant = uu * vv - uv * uv;
        if (determinant <= 1e-9 * uu * vv) return {};  // all in a line
        return {(ul * vv - vl * uv) / determinant, (vl * uu - ul * uv) / determinant};
    }
};

int MainAxis(const Vec3& normal) {
    const double x = std::abs(normal.x);
    const double y = std::abs(normal.y);
    const double z = std::abs(normal.z);
    return z >= x && z >= y ? 2 : x >= y ? 0 : 1;
}

}  // namespace

LightFit FitLight(const std::vector<const LightSample*>& samples, const Vec3& normal) {
    if (samples.empty()) return {};
    const int across = MainAxis(normal);
    const int axisU = (across + 1) % 3;
    const int axisV = (across + 2) % 3;
    LightSample mean;
    for (const LightSample* sample : samples) {
        mean.place = mean.place + sample->place;
        mean.light += sample->light;
    }
    const double part = 1 / static_cast<double>(samples.size());
    mean = {mean.place * part, mean.light * part};
    Moments moments;
    for (const LightSample* sample : samples) {
        const Vec3 offset = sample->place - mean.place;
        moments.Add(offset[axisU], offset[axisV], sample->light - mean.light);
    }
    const Gradient gradient = moments.BestGradient();
    LightFit fit;
    for (const LightSample* sample : samples) {
        const Vec3 offset = sample->place - mean.place;
        const double fitted = mean.light + gradient.u * offset[axisU] + gradient.v * offset[axisV];
        const double distance = std::abs(sample->light - fitted);
        fit.squares += distance * distance;
        fit.worst = std::max(fit.worst, distance);
    }
    return fit;
}
