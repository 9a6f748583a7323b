#!/usr/bin/env bash
# Retakes the AppStream screenshots from a build: a stored message of three slides, opened with
# File > Open on a bare X server, then the window alone at 1200x720.
#   data/screenshots/take.sh HOME_DIR [BUILD_DIR]
# HOME_DIR must not exist yet; it shows in the library's folder box, so /home/anna on a scratch
# machine gives the published look. Needs xvfb, xdotool, imagemagick and python3-mido.
set -euo pipefail
home=${1:?usage: take.sh HOME_DIR [BUILD_DIR]}
bin=$(realpath "${2:-build}")/bin
out=$(cd "$(dirname "$0")" && pwd)
[[ -e $home ]] && { echo "$home exists" >&2; exit 1; }
mkdir -p "$home"
export HOME=$home DISPLAY=:97
app=$home/.local/share/Morvane/mms-composer
media=$home/media
mkdir -p "$media" "$app/UserData/Picture" "$app/UserData/Sound"

cd "$media"
convert -size 320x240 gradient:'#fde8d0'-'#f6b5b5' -fill '#8e44ad' -draw "rectangle 110,120 210,190" \
    -fill '#f7dc6f' -draw "rectangle 110,112 210,122" -fill '#e74c3c' -draw "rectangle 157,80 163,112" \
    -fill '#f1c40f' -draw "ellipse 160,74 5,9 0,360" cake.gif
convert -size 320x240 gradient:'#87ceeb'-'#e0f4ff' \( -size 320x60 xc:'#2e86c1' \) -geometry +0+150 \
    -composite \( -size 320x40 xc:'#f5cba7' \) -geometry +0+200 -composite -fill '#f39c12' \
    -draw "circle 240,60 240,82" beach.jpg
convert -size 320x240 gradient:'#1b2a6b'-'#f5876b' -fill '#f4d03f' -draw "circle 160,200 160,170" \
    -fill '#1c2833' -draw "rectangle 0,205 320,240" sunset.jpg
convert -size 320x240 -seed 7 plasma:green-blue mountains.jpg
convert -size 320x240 gradient:'#d5f5e3'-'#a9dfbf' -fill '#e74c3c' -draw "circle 80,120 80,135" \
    -fill '#8e44ad' -draw "circle 160,100 160,118" -fill '#e67e22' -draw "circle 240,140 240,152" flowers.bmp
/usr/bin/python3 - <<'PY'
import mido
def tune(name, notes, program, bpm, beats_per_bar):
    mid = mido.MidiFile(ticks_per_beat=96)
    track = mido.MidiTrack()
    mid.tracks.append(track)
    track.append(mido.MetaMessage('set_tempo', tempo=mido.bpm2tempo(bpm)))
    track.append(mido.MetaMessage('time_signature', numerator=beats_per_bar, denominator=4))
    track.append(mido.Message('program_change', program=program))
    for note, beats in notes:
        track.append(mido.Message('note_on', note=note, velocity=90))
        track.append(mido.Message('note_off', note=note, time=int(96 * beats)))
    mid.save(name)
tune('birthday.mid', [(60, .75), (60, .25), (62, 1), (60, 1), (65, 1), (64, 2), (60, .75), (60, .25),
                      (62, 1), (60, 1), (67, 1), (65, 2)], 0, 120, 3)
tune('waves.mid', [(64, 1), (67, 1), (72, 2), (71, 1), (67, 1), (64, 2), (62, 1), (65, 1), (69, 2)], 11, 90, 4)
tune('evening.mid', [(57, 2), (60, 2), (64, 4), (62, 2), (59, 2), (55, 4)], 48, 70, 4)
PY
cp ./*.gif ./*.jpg ./*.bmp "$app/UserData/Picture/"
cp ./*.mid "$app/UserData/Sound/"
"$bin/mmsc" --home "$app" build --subject "For Anna" \
    --slide --dur 4 --pic cake.gif --text "Happy birthday, Anna!" --sound birthday.mid \
    --slide --pic beach.jpg --text "See you at the beach on Saturday" --sound waves.mid \
    --slide --dur 5 --pic sunset.jpg --text "Love, Tom" --sound evening.mid --save Birthday

Xvfb "$DISPLAY" -screen 0 1280x800x24 >/dev/null 2>&1 &
xvfb=$!
composer=""
trap 'kill $composer "$xvfb" 2>/dev/null || true' EXIT
sleep 1
"$bin/mms-composer" --home "$app" --language en >/dev/null 2>&1 &
composer=$!
sleep 3
window=$(xdotool search --onlyvisible --class mms-composer | head -1)
xdotool windowsize "$window" 1200 720 windowmove "$window" 0 0
shot() { sleep 1; import -window root -crop 1200x720+0+0 "$out/$1"; }
# No window manager: a click gives the window the keyboard.
xdotool mousemove 500 500 click 1 key ctrl+o
sleep 1.5
xdotool type Birthday
xdotool key Return mousemove 790 150 click 1
shot main-window.png
xdotool mousemove 52 150 click 1 sleep 0.5 mousemove 880 33 click 1 sleep 1 mousemove 810 164 click 1
shot sound-library.png
echo "wrote $out/main-window.png and $out/sound-library.png"
