# SPDX-License-Identifier: GPL-3.0-or-later
# shellcheck shell=bash disable=SC2034,SC2154,SC2012
# For machines without a display: draws a side-by-side clip and photo, converts them to spatial media and
# back, and lists the results. ./run sources this file.

# letter L|R X Y: prints drawbox filters that draw a letter of 60 × 100 pixels.
letter() {
    local box="drawbox=color=white:t=fill"
    printf '%s:x=%d:y=%d:w=16:h=100,' "$box" "$2" "$3"
    if [ "$1" = L ]; then
        printf '%s:x=%d:y=%d:w=60:h=16' "$box" "$2" "$(($3 + 84))"
    else
        printf '%s:x=%d:y=%d:w=60:h=16,' "$box" "$2" "$3"
        printf '%s:x=%d:y=%d:w=60:h=16,' "$box" "$2" "$(($3 + 44))"
        printf '%s:x=%d:y=%d:w=16:h=60,' "$box" "$(($2 + 44))" "$3"
        printf '%s:x=%d:y=%d:w=20:h=20,' "$box" "$(($2 + 26))" "$(($3 + 60))"
        printf '%s:x=%d:y=%d:w=20:h=20' "$box" "$(($2 + 42))" "$(($3 + 80))"
    fi
}

# eye L|R SHIFT: prints filters for one eye of the scene, 960 × 540. The disparity is SHIFT pixels for the background
# and three times as much for the moving square, which is nearer.
eye() {
    printf 'crop=960:540:%d:0[back%s];' "$((60 + $2))" "$1"
    printf '[back%s][near%s]overlay=x=%d+120*t:y=200,%s' "$1" "$1" "$((240 - 3 * $2))" "$(letter "$1" 40 40)"
}

# draw_clip FILE SECONDS: draws both eyes side by side, with a tone.
draw_clip() {
    "$stack_prefix/bin/ffmpeg" -nostdin -v error -y \
        -f lavfi -i "testsrc2=size=1080x540:rate=30:duration=$2" \
        -f lavfi -i "color=c=orange:size=120x120:rate=30:duration=$2" \
        -f lavfi -i "sine=frequency=440:sample_rate=48000:duration=$2" \
        -filter_complex "[0:v]split[a][b];[1:v]split[nearL][nearR];
            [a]$(eye L 0)[left];[b]$(eye R 12)[right];[left][right]hstack,format=yuv420p[both]" \
        -map '[both]' -map 2:a -c:v libx264 -preset veryfast -crf 16 -c:a aac "$1"
}

draw_media() {
    mkdir -p "$1" && draw_clip "$1/clip.mp4" 3 &&
        "$stack_prefix/bin/ffmpeg" -nostdin -v error -y -i "$1/clip.mp4" -frames:v 1 "$1/photo.png"
}

# inspect_all BATCH FOLDER: prints name, size and the batch tool's inspection of each file.
inspect_all() {
    ls -lh "$2" | awk 'NR > 1 {printf "    %-28s %8s\n", $9, $5}'
    "$1" inspect "$2"/* | sed 's/^/    /'
}

# demonstrate BATCH FOLDER
demonstrate() {
    local batch=$1 folder=$2
    say "no display: converting a drawn sample both ways with lumetwin-batch, in $folder"
    rm -rf "$folder"
    mkdir -p "$folder/spatial" "$folder/side-by-side" 2>/dev/null || die "cannot write to $folder"
    step "drawing a sample" draw_media "$folder/drawn"
    "$batch" --direction sbsToSpatial --output "$folder/spatial" "$folder/drawn"
    inspect_all "$batch" "$folder/spatial"
    "$batch" --direction spatialToSBS --output "$folder/side-by-side" "$folder/spatial"
    inspect_all "$batch" "$folder/side-by-side"
    say "the files are in $folder; with a display, ./run opens the window"
}
