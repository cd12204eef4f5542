# Cross build for 64-bit ARM with Debian's compiler (scripts/other_processors.sh). The environment variable
# ARM64_LIBRARIES names a folder into which the libraries' packages have been unpacked.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(libraries $ENV{ARM64_LIBRARIES})
set(CMAKE_FIND_ROOT_PATH ${libraries})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
# Libraries that these libraries need themselves are found when the game runs.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,--unresolved-symbols=ignore-in-shared-libs")
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${libraries})
set(ENV{PKG_CONFIG_LIBDIR} ${libraries}/usr/lib/aarch64-linux-gnu/pkgconfig:${libraries}/usr/share/pkgconfig)
