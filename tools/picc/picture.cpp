#include "picc/picture.h"

#include "picc/items.h"

Image PaintPicture(const std::filesystem::path& description, const PictureSources& sources) {
    const TomlTable text = TomlTable::Load(description);
    Painter painter{Image(PICTURE_WIDTH, PICTURE_HEIGHT, {0, 0, 0, 255}),
                    sources.materials,
                    sources.pictures,
                    Lettering(sources.fonts),
                    {}};
    const std::vector<TomlTable> items = text.Tables("item");
    if (items.empty()) text.RefuseTable("the picture is empty", "add an [[item]]");
    text.Finish();
    for (const TomlTable& item : items)
        PaintItem(painter, item);
    return painter.image;
}
