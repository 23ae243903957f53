#!/bin/sh
# Whether the rooms of the library know only those below them: rooms.sh <root of the sources>. Each line names a room,
# and the rooms whose headers its sources and its public headers may include. A public header belongs to the room of its
# source.
cd "$1/src" || exit 1
headers=../include/gui/gl
status=0
while read -r room below; do
    own=$(find "$room" -name '*.cpp' | sed "s|.*/\(.*\)\.cpp|$headers/\1.h|" | xargs -r ls 2> /dev/null)
    # shellcheck disable=SC2086
    if grep -rnE '#include "(\.\./)+[a-z]+/' "$room" | grep -vE "\"(\.\./)+($below)/" ||
        # shellcheck disable=SC2013
        for header in $(grep -rhoE '#include (<gui/gl/|")[A-Z][A-Za-z0-9]*\.h' "$room" $own |
            sed 's|.*[</"]||; s|\.h$||'); do
            find context gpu shapes text view -name "$header.cpp" -path '*/*' | grep -vE "^($room|$below)/"
        done | sort -u | grep .; then
        echo "$room may include headers of: $below"
        status=1
    fi
done << 'END'
simd nothing
context nothing
gpu context|simd
capture gpu|context|simd
shapes gpu|context|simd
text gpu|context|simd
view text|shapes|gpu|context|simd
END
exit $status
