#!/bin/sh
# Whether the library does without a display server's libraries, and without FreeType and fontconfig: without-sdl.sh
# <root of the sources> <folder to build in> <compiler>. What differs then is compiled; nothing else may include what
# belongs to SDL, a display server, FreeType or fontconfig.
others=$(cd "$1" && grep -rnE '#include (<(SDL|X11/|wayland|xkbcommon)|"(\.\./)*sdl/)' \
    --include='*.h' --include='*.cpp' --exclude-dir=sdl --exclude-dir='sdl[23]' \
    src toolkit draw tools examples include |
    grep -vE '^(src/native/(Surfaces|KeySymbols)|toolkit/src/WindowSystem)\.cpp:')
if [ -n "$others" ]; then
    echo "$others"
    exit 1
fi
others=$(cd "$1" && grep -rnE '#include (FT_|<(ft2build|freetype|fontconfig))' --include='*.h' --include='*.cpp' \
    src toolkit draw include hosts | grep -vE '^draw/src/type/(ColorPaint|ColorPicture|FreeTypeFace|SystemFonts)\.cpp:')
if [ -n "$others" ]; then
    echo "$others"
    exit 1
fi
# What an older version looked for there would be found still.
rm -f "$2/CMakeCache.txt"
cmake -S "$1" -B "$2" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER="$3" \
    -DGUIGL_SDL=OFF -DGUIGL_FREETYPE=OFF -DGUIGL_QT6=OFF -DGUIGL_GTK4=OFF \
    -DGUIGL_TOOLS=OFF -DGUIGL_EXAMPLES=OFF -DGUIGL_TESTS=OFF || exit 1
if grep -iE '^(SDL[23]|X11|WAYLAND|XKBCOMMON|FREETYPE|FONTCONFIG)_' "$2/CMakeCache.txt"; then
    echo "Something of a display server, of FreeType or fontconfig is looked for all the same."
    exit 1
fi
ninja -C "$2" toolkit/CMakeFiles/guigl_gui.dir/src/WindowSystem.cpp.o \
    src/CMakeFiles/guigl_gl.dir/native/Surfaces.cpp.o draw/CMakeFiles/guigl_draw.dir/src/type/WithoutFreeType.cpp.o
