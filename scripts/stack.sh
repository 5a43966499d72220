# SPDX-License-Identifier: GPL-3.0-or-later
# The media stack: x265 with multiview, FFmpeg and libheif, built static and minimal from Debian's source
# packages into the per-user cache. Its folder is named after a hash of this file and of the patches beside it:
# another recipe, another folder. Sourced by ./run and ./test; finished parts are never built twice.

stack_suite=trixie # the first Debian release whose sources are new enough
stack_patches=$(cd "$(dirname "${BASH_SOURCE[0]}")/patches" && pwd)
# Of the sums of the files, a line each; cmake/MediaStack.cmake and bench/measure.py reckon the same.
stack_recipe=$(sha256sum "${BASH_SOURCE[0]}" "$stack_patches"/*.patch | cut -d' ' -f1 | sha256sum | cut -c1-12)
stack_prefix="$lumetwin_cache/stack-$stack_recipe"
stack_sources="$lumetwin_cache/sources"
stack_work="$lumetwin_cache/build-$stack_recipe"

# The decoders, demuxers and protocols are those that Lumetwin's inputs need: a smaller surface for hostile
# files. Encoders, filters and muxers beyond Lumetwin's own serve the tests and benchmarks, which
# draw their media with the ffmpeg of this stack.
ffmpeg_decoders=h264,hevc,mpeg4,msmpeg4v1,msmpeg4v2,msmpeg4v3,h263,mjpeg,mjpegb,vp8,vp9,libdav1d,prores,dnxhd,cfhd,ffv1,huffyuv,ffvhuff,utvideo,dvvideo,mpeg1video,mpeg2video,vc1,wmv1,wmv2,wmv3,png,rawvideo,wrapped_avframe,aac,aac_latm,mp1float,mp2float,mp3float,ac3,eac3,dca,truehd,alac,flac,opus,vorbis,amrnb,amrwb,wmav1,wmav2,wmapro,pcm_bluray,pcm_s16le,pcm_s16be,pcm_s24le,pcm_s24be,pcm_s32le,pcm_s32be,pcm_f32le,pcm_f32be,pcm_f64le,pcm_f64be,pcm_u8,pcm_s8,pcm_alaw,pcm_mulaw,adpcm_ms,adpcm_ima_wav,adpcm_ima_qt
ffmpeg_demuxers=mov,matroska,avi,mpegts,asf,hevc,h264,rawvideo,yuv4mpegpipe,wav,pcm_s16le
ffmpeg_parsers=h264,hevc,mpeg4video,mjpeg,vp8,vp9,av1,aac,aac_latm,mpegaudio,ac3,dca,flac,opus,vorbis,h263,mpegvideo,vc1,dvbsub,png,dnxhd
ffmpeg_encoders=libx264,libx265,aac,ac3,alac,flac,mp2,mpeg4,msmpeg4v3,wmv2,wmav2,mjpeg,prores_ks,dnxhd,ffv1,huffyuv,png,rawvideo,wrapped_avframe,pcm_s16le,pcm_s16be,pcm_s24le,pcm_f32le
ffmpeg_muxers=image2,mov,mp4,matroska,avi,mpegts,asf,hevc,h264,rawvideo,yuv4mpegpipe,wav,pcm_s16le,null,framemd5,framecrc,md5,crc
ffmpeg_filters=aevalsrc,aformat,amerge,anoisesrc,anull,anullsrc,aresample,asetpts,atrim,color,concat,crop,drawbox,format,fps,gblur,geq,hflip,hstack,mandelbrot,noise,null,overlay,pad,pan,psnr,scale,scroll,select,setfield,setparams,setpts,settb,sine,split,asplit,ssim,testsrc,testsrc2,tinterlace,transpose,trim,tpad,volume,vstack
ffmpeg_bsfs=hevc_mp4toannexb,h264_mp4toannexb,hevc_metadata,h264_metadata,extract_extradata,aac_adtstoasc,vp9_superframe,vp9_superframe_split,av1_frame_merge,trace_headers,null,noise

# The machine's own mirror of Debian, as apt knows it.
debian_mirror() {
    local uri
    uri=$(apt-get indextargets --format '$(REPO_URI)|$(ORIGIN)|$(LABEL)' 'Created-By: Packages' 2>/dev/null |
        awk -F'|' '$2 == "Debian" && $3 == "Debian" {print $1; exit}')
    [ -n "$uri" ] || uri=$(grep -rhE '^(URIs:|deb )' /etc/apt/sources.list /etc/apt/sources.list.d 2>/dev/null |
        sed -E 's/^URIs: *//; s/^deb (\[[^]]*\] )?//; s/ .*//' | grep -E '/debian/?$' | head -n 1)
    [ -n "$uri" ] || return 1
    echo "${uri%/}"
}

# private_apt COMMAND…: apt-get with a configuration, lists and cache of our own.
private_apt() {
    local tool=$1 root="$lumetwin_cache/apt"
    shift
    "$tool" -o Dir::Etc::sourcelist="$root/sources.list" -o Dir::Etc::sourceparts=/dev/null \
        -o Dir::State::lists="$root/lists" -o Dir::Cache="$root/cache" -o APT::Get::List-Cleanup=0 \
        -o APT::Sandbox::User="$(id -un)" "$@"
}

# newest PATTERN: the latest version among the archives that match.
newest() { compgen -G "$1" | sort -V | tail -n 1; }

# intact ARCHIVE PACKAGE: whether the signed index has it; a download that was cut short is not there.
intact() {
    private_apt apt-cache showsrc --only-source "$2" | grep -F " $(sha256sum "$1" | cut -d' ' -f1) " >/dev/null
}

# fetch_sources: the upstream archives, checked against the signed index.
fetch_sources() {
    local root="$lumetwin_cache/apt" mirror keyring=/usr/share/keyrings/debian-archive-keyring.gpg name archive
    mirror=$(debian_mirror) || { echo "E: Unable to locate package sources: no Debian mirror in apt's configuration"; return 1; }
    mkdir -p "$root/lists/partial" "$root/cache/archives/partial" "$stack_sources"
    echo "deb-src [signed-by=$keyring] $mirror $stack_suite main" >"$root/sources.list"
    private_apt apt-get update --error-on=any || return 1
    cd "$stack_sources" || return 1
    for name in ffmpeg libheif x265; do
        # Packaging files that a mirror lacks make apt end with an error; what counts is the list below.
        private_apt apt-get source --download-only --only-source "$name" || true
    done
    for name in ffmpeg_7.1*.orig ffmpeg_7.1*.debian libheif_1*.orig libheif_1*.debian x265_4*.orig; do
        archive=$(newest "$name.tar.*z")
        [ -n "$archive" ] || { echo "E: Unable to find a source package: $name"; return 1; }
        intact "$archive" "${name%%_*}" || { rm -f "$archive"; echo "E: Failed to fetch $archive: incomplete"; return 1; }
    done
}

# mend NAME FOLDER: our own patches of a library, in the order of their names; each says at its head what it is for.
mend() {
    local patch
    for patch in "$stack_patches/$1"-*.patch; do
        patch -d "$2" -p1 --forward <"$patch" || return 1
    done
}

# unpack NAME_VERSION-PREFIX TARGET [patched]: the newest upstream archive; `patched` adds the
# distribution's patches (security fixes among them).
unpack() {
    local archive packaging patch
    archive=$(newest "$stack_sources/$1*.orig.tar.*z")
    rm -rf "$2" && mkdir -p "$2" && tar -xf "$archive" -C "$2" --strip-components=1 || return 1
    [ "${3:-}" = patched ] || return 0
    packaging=$(newest "$stack_sources/$1*.debian.tar.*z")
    tar -xf "$packaging" -C "$2" || return 1
    while read -r patch _; do
        case $patch in '' | '#'*) continue ;; esac
        patch -d "$2" -p1 --forward <"$2/debian/patches/$patch" || return 1
    done < <(cat "$2/debian/patches/series" 2>/dev/null)
}

build_x265() {
    unpack x265_4 "$stack_work/x265" && mend x265 "$stack_work/x265" || return 1
    # CMake 4 has forgotten the old behaviours that it asks for; none of them matters here.
    sed -i -E 's/(cmake_policy\(SET CMP[0-9]+) OLD\)/\1 NEW)/' "$stack_work/x265/source/CMakeLists.txt" || return 1
    # A library has one depth. The one for 8 bits contains the one for ten, and hands it out (x265_api_get).
    local ten="$stack_work/x265-ten-build/libx265.a"
    [ "$(uname -m)" != x86_64 ] || write_assembler "$stack_work/x265-assembler" || return 1
    configure_x265 x265-ten-build -DHIGH_BIT_DEPTH=ON -DEXPORT_C_API=OFF -DENABLE_CLI=OFF &&
        cmake --build "$stack_work/x265-ten-build" &&
        configure_x265 x265-build -DENABLE_CLI=ON -DEXTRA_LIB="$ten" -DLINKED_10BIT=ON &&
        cmake --build "$stack_work/x265-build" && cmake --install "$stack_work/x265-build" || return 1
    cd "$stack_prefix/lib" && mv libx265.a libx265_8.a && mv "$ten" libx265_10.a || return 1
    printf '%s\n' 'CREATE libx265.a' 'ADDLIB libx265_8.a' 'ADDLIB libx265_10.a' SAVE END | ar -M &&
        rm libx265_8.a libx265_10.a
}

# write_assembler FILE: writes a program that assembles as nasm does, but expands the macros of a source once. nasm itself
# does so in each of its passes, which takes four times as long with the macros of x265. The code is the same; only what
# fills the gaps before aligned places is made of short instructions without effect instead of long ones.
write_assembler() {
    cat >"$1" <<'TEXT' && chmod +x "$1"
#!/bin/sh
object= before=
for word; do
    [ "$before" != -o ] || object=$word
    before=$word
done
if [ -n "$object" ] && nasm -E "$@" && mv "$object" "$object.expanded" &&
    nasm -a -f elf64 -o "$object" "$object.expanded"; then
    rm "$object.expanded"
else
    exec nasm "$@"
fi
TEXT
}

# configure_x265 FOLDER OPTION…: multiview is the reason for building it; distributions leave it off.
configure_x265() {
    local folder=$1
    shift
    [ ! -x "$stack_work/x265-assembler" ] || set -- "$@" -DNASM_EXECUTABLE="$stack_work/x265-assembler"
    cmake -S "$stack_work/x265/source" -B "$stack_work/$folder" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_POLICY_VERSION_MINIMUM=3.5 -DCMAKE_INSTALL_PREFIX="$stack_prefix" -DLIB_INSTALL_DIR=lib \
        -DCMAKE_POSITION_INDEPENDENT_CODE=ON -DENABLE_MULTIVIEW=ON -DENABLE_SHARED=OFF "$@"
}

build_ffmpeg() {
    unpack ffmpeg_7.1 "$stack_work/ffmpeg" patched || return 1
    cd "$stack_work/ffmpeg" || return 1
    PKG_CONFIG_PATH="$stack_prefix/lib/pkgconfig" ./configure --prefix="$stack_prefix" \
        --disable-everything --disable-autodetect --disable-network --disable-doc --disable-debug \
        --disable-avdevice --disable-postproc --disable-ffplay \
        --enable-static --disable-shared --enable-pic --enable-gpl --enable-version3 --pkg-config-flags=--static \
        --enable-libx264 --enable-libx265 --enable-libdav1d --enable-zlib \
        --enable-protocol=file,pipe,fd --enable-avdevice --enable-indev=lavfi \
        --enable-decoder="$ffmpeg_decoders" --enable-demuxer="$ffmpeg_demuxers" --enable-parser="$ffmpeg_parsers" \
        --enable-encoder="$ffmpeg_encoders" --enable-muxer="$ffmpeg_muxers" \
        --enable-filter="$ffmpeg_filters" --enable-bsf="$ffmpeg_bsfs" &&
        make -j"$(nproc)" && make install
}

build_libheif() {
    local codecs
    unpack libheif_1 "$stack_work/libheif" patched || return 1
    # Its example programs (our judge: heif-info) link FFmpeg as if it were shared; name what a static one needs.
    codecs=$(PKG_CONFIG_PATH="$stack_prefix/lib/pkgconfig" pkg-config --static --libs libavcodec) || return 1
    PKG_CONFIG_PATH="$stack_prefix/lib/pkgconfig" cmake -S "$stack_work/libheif" -B "$stack_work/libheif-build" -G Ninja \
        -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$stack_prefix" -DCMAKE_INSTALL_LIBDIR=lib \
        -DCMAKE_PREFIX_PATH="$stack_prefix" -DCMAKE_CXX_STANDARD_LIBRARIES="$codecs" -DCMAKE_POSITION_INDEPENDENT_CODE=ON \
        -DBUILD_SHARED_LIBS=OFF -DENABLE_PLUGIN_LOADING=OFF -DBUILD_TESTING=OFF \
        -DWITH_EXAMPLES=ON -DWITH_GDK_PIXBUF=OFF -DWITH_FFMPEG_DECODER=ON -DWITH_LIBDE265=OFF -DWITH_X265=OFF \
        -DWITH_AOM_DECODER=OFF -DWITH_AOM_ENCODER=OFF -DWITH_DAV1D=OFF -DWITH_RAV1E=OFF -DWITH_SvtEnc=OFF \
        -DWITH_KVAZAAR=OFF -DWITH_LIBSHARPYUV=OFF -DWITH_OpenH264_DECODER=OFF -DWITH_OPENJPH_ENCODER=OFF &&
        cmake --build "$stack_work/libheif-build" && cmake --install "$stack_work/libheif-build"
}

# part NAME FUNCTION: builds a part once; an interrupted one starts again.
part() {
    [ -e "$stack_prefix/.done-$1" ] && return 0
    step "building $1" "$2"
    touch "$stack_prefix/.done-$1"
    rm -rf "$stack_work/$1" "$stack_work/$1"-*build
}

ensure_stack() {
    [ -e "$stack_prefix/.complete" ] && return 0
    mkdir -p "$stack_prefix" "$stack_work" || die "cannot write to $lumetwin_cache"
    local lock="$lumetwin_cache/stack.lock"
    exec 9>"$lock" # two set-ups at once would build into each other
    flock -n 9 || { say "waiting for another set-up that builds the media stack"; flock 9; }
    if [ ! -e "$stack_prefix/.complete" ]; then
        say "building the media stack once, into $stack_prefix (about seven minutes on two cores)"
        [ -e "$stack_prefix/.done-sources" ] || step "fetching sources" fetch_sources
        touch "$stack_prefix/.done-sources"
        part x265 build_x265
        part ffmpeg build_ffmpeg
        part libheif build_libheif
        rm -rf "$stack_work"
        touch "$stack_prefix/.complete"
    fi
    exec 9>&-
}
