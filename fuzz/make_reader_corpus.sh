#!/usr/bin/env bash
# Regenerates the seeds of the readers of files a user can be handed, from files the programs
# themselves make: stored messages from `mmsc build --save`, the built language files, drafts and
# sent logs as the composer and `mmsc send` write them, AMR sounds from opencore-amr's encoder and
# pictures from ImageMagick, short sounds in the formats people have from ffmpeg. Needs a default build (build/bin) and g++ with opencore-amr.
set -euo pipefail
cd "$(dirname "$0")"
bin=../build/bin
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for t in messageindex storeload language draft amrdecoder sentlog picturecheck gifshrink sounddecode clipdecode; do
  # Inputs that once crashed a reader (crash-*) stay as named seeds.
  mkdir -p "corpus/$t" && find "corpus/$t" -type f ! -name 'crash-*' -delete
done

# Sounds people have, a fifth of a second each, and a video with sound: what the converter reads.
for f in mp3 ogg opus m4a flac wav mp4; do
  extra=()
  [ $f = mp4 ] && extra=(-f lavfi -i testsrc=size=32x24:duration=0.2 -c:v mpeg4)
  ffmpeg -v error -y -f lavfi -i sine=frequency=440:duration=0.2 "${extra[@]}" "corpus/sounddecode/tone.$f"
done

# Tiny videos in the containers and codecs phones and cameras write, and one with sound.
for kind in mp4:libx264 3gp:h263 mkv:mpeg4 webm:libvpx avi:mjpeg; do
  size=32x24
  [ "${kind#*:}" = h263 ] && size=128x96
  ffmpeg -v error -y -f lavfi -i testsrc=size=$size:rate=10:duration=0.3 -c:v "${kind#*:}" -pix_fmt yuv420p \
    "corpus/clipdecode/tiny.${kind%%:*}"
done
cp corpus/sounddecode/tone.mp4 corpus/clipdecode/withsound.mp4
printf 'not a video\n' > corpus/clipdecode/text.mp4

# AMR sounds: a tone in each bit rate, a frame of silence ("no data") and one cut short.
cat > "$work/amr.cpp" <<'CPP'
#include <cmath>
#include <cstdio>
extern "C" {
#include <opencore-amrnb/interf_enc.h>
}
int main(int, char** argv) {
    for (int mode = 0; mode <= 7; ++mode) {
        void* encoder = Encoder_Interface_init(0);
        char name[256];
        std::snprintf(name, sizeof name, "%s/mode%d.amr", argv[1], mode);
        FILE* out = std::fopen(name, "wb");
        std::fputs("#!AMR\n", out);
        short pcm[160];
        unsigned char frame[64];
        for (int f = 0; f < 4; ++f) {
            for (int i = 0; i < 160; ++i)
                pcm[i] = short(8000 * std::sin(2 * M_PI * 440 * (f * 160 + i) / 8000.0));
            std::fwrite(frame, 1, size_t(Encoder_Interface_Encode(encoder, Mode(mode), pcm, frame, 0)), out);
        }
        std::fclose(out);
        Encoder_Interface_exit(encoder);
    }
}
CPP
g++ -o "$work/amr" "$work/amr.cpp" $(pkg-config --cflags --libs opencore-amrnb)
"$work/amr" corpus/amrdecoder
{ printf '#!AMR\n'; printf '\x7c'; } > corpus/amrdecoder/nodata.amr
head -c 30 corpus/amrdecoder/mode7.amr > corpus/amrdecoder/cut.amr
printf '#!AMR-WB\n\x04' > corpus/amrdecoder/wideband.amr
cp corpus/amrdecoder/mode7.amr corpus/sounddecode/tone.amr
printf 'not a sound\n' > corpus/sounddecode/text.mp3

# Pictures: each kind the program takes, an animation, and damaged ones.
pic=corpus/picturecheck
convert -size 12x8 xc:orange -quality 60 "$pic/photo.jpg"
convert -size 12x8 xc:orange -interlace Plane "$pic/progressive.jpg"
convert -size 12x8 xc:orange -colorspace CMYK "$pic/cmyk.jpg"
convert -size 12x8 xc:teal "$pic/still.gif"
convert -size 12x8 xc:teal "$pic/still.png"
convert -size 12x8 xc:teal "BMP3:$pic/still.bmp"
head -c 200 "$pic/photo.jpg" > "$pic/cut.jpg"
printf 'GIF89a' > "$pic/header.gif"
printf 'just some words\n' > "$pic/text.txt"
convert -delay 10 -size 16x10 xc:red xc:green xc:blue -loop 0 "$work/anim.gif"
convert -delay 5 -size 20x14 xc:none -fill black -draw 'circle 10,7 10,2' \
  \( -size 20x14 xc:none -fill navy -draw 'rectangle 2,2 12,10' \) -dispose Background -loop 3 "$work/disposed.gif"
cp "$work/anim.gif" "$work/disposed.gif" "$pic/"
# The shrink seeds: a byte choosing the limit (in 64-byte steps), then the GIF.
for g in "$pic/still.gif" "$work/anim.gif" "$work/disposed.gif"; do
  for limit in '\x00' '\x04' '\xff'; do
    { printf "$limit"; cat "$g"; } > "corpus/gifshrink/$(basename "$g" .gif)-$(printf "$limit" | od -An -tu1 | tr -d ' ').bin"
  done
done

# Language files: the sources and the files the build made from them.
cp ../lang/English.txt ../lang/French.txt ../lang/Russian.txt corpus/language/
cp "$bin/English.lng" "$bin/SimplifiedChinese.lng" "$bin/German.lng" corpus/language/
printf 'language = Tiny\nformat = 1\nprompt.0 = One\\s\ninterface.0 = %%1 of %%2\nerror.0 = Bad\\n\\\\\n' \
  > corpus/language/tiny.txt

# Stored messages, as mmsc build --save writes them; the store seeds pack the folder after the index.
home="$work/home"
mkdir -p "$home"
convert -size 10x6 xc:purple "$work/p.jpg"
cp "$work/anim.gif" "$work/a.gif"
cp corpus/amrdecoder/mode7.amr "$work/s.amr"
cp ../fuzz/corpus/mididecoder/scale.mid "$work/t.mid"
"$bin/mmsc" --home "$home" build --subject 'Hello there' --slide --pic "$work/p.jpg" --text 'Hi' \
  --sound "$work/s.amr" --slide --dur 7 --text 'Two' --slide --pic "$work/a.gif" --sound "$work/t.mid" \
  --save full >/dev/null
"$bin/mmsc" --home "$home" build --slide --text 'only text' --save text >/dev/null
"$bin/mmsc" --home "$home" build --subject 'Empty' --save empty >/dev/null
python3 - "$home/UserData/MMS" <<'PY'
import os, struct, sys
mms = sys.argv[1]
for name in ("full", "text", "empty"):
    index = open(os.path.join(mms, name + ".mmt"), "rb").read()
    open(f"corpus/messageindex/{name}.mmt", "wb").write(index)
    packed = index
    folder = os.path.join(mms, name)
    for f in sorted(os.listdir(folder)) if os.path.isdir(folder) else []:
        data = open(os.path.join(folder, f), "rb").read()[:65535]
        packed += b"\0" + f.encode() + b"\0" + struct.pack("<H", len(data)) + data
    open(f"corpus/storeload/{name}", "wb").write(packed)
# Indexes written elsewhere: a quoted duration, a subject with commas, CRLF lines, a bad duration.
extra = {"quoted.mmt": b'Hi\r\n"007",N,Y,N\r\n5,Y,N,Y\r\n',
         "commas.mmt": b'Hello, you, there\n3,N,Y,N\n',
         "badduration.mmt": b'S\n99999,N,N,N\n',
         "short.mmt": b'S\n3,N\n'}
for name, data in extra.items():
    open("corpus/messageindex/" + name, "wb").write(data)
# A folder with a clip in place of a picture, a folder named like a part and a missing text.
open("corpus/storeload/clip", "wb").write(b"C\n3,Y,Y,Y\n\0vdo1.3gp\0\x04\0abcd\0sound1/\0\0\0")
PY

# Drafts as the composer writes them (encodeDraft), and sent logs as mmsc send keeps them.
python3 - <<'PY'
import json
def draft(name, subject, current, slides):
    return {"format": "mms-composer-draft", "version": 1, "name": name, "subject": subject,
            "current": current, "slides": [{"duration": d, "picture": p, "text": t, "sound": s}
                                           for d, p, t, s in slides]}
drafts = {
    "saved.json": draft("greeting", "Hi", 2, [(3, "/w/UserData/MMS/temp/pic1.jpg", "Hello", ""),
                                             ("12", "", "line\nbreak", "/w/lib/tune.mid")]),
    "new.json": draft("", "", 0, []),
    "unicode.json": draft("", "Grüße 🙂", 1, [(32767, "/w/p.gif", "Привет", "/w/s.amr")]),
}
for name, d in drafts.items():
    open("corpus/draft/" + name, "w").write(json.dumps(d, indent=4, ensure_ascii=False))
open("corpus/draft/otherversion.json", "w").write(json.dumps({**drafts["new.json"], "version": 2}))
entry = lambda m, t, r, p, st, re, sn: {"message": m, "handedOver": t, "recipients": r, "path": p,
                                         "status": st, "reason": re, "snapshot": sn}
logs = {
    "two.json": [entry("greeting", "2024-05-01T10:00:00Z", ["+4412345678"], "/org/ofono/mms/1", "sent", "", ""),
                 entry("photo", "2024-05-02T11:30:05Z", ["+441", "+442"], "/org/ofono/mms/2", "draft", "",
                       "/w/Temp/send-1")],
    "failed.json": [entry("x", "2024-05-03T00:00:00Z", [], "/p/3", "failed", "no network", "")],
    "empty.json": [],
}
for name, log in logs.items():
    open("corpus/sentlog/" + name, "w").write(json.dumps(log, indent=4))
open("corpus/sentlog/object.json", "w").write('{"not": "a list"}')
PY
