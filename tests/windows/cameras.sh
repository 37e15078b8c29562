# SPDX-License-Identifier: MIT
# To be sourced: the simulated cameras of the whole-program checks, and what is to be found there.

# Hot pixels of the first camera's frames, far from each other and from the edges, line by line.
hot_pixels="100 20
333 21
64 77
512 78
31 200
240 240
600 300
17 333
401 402
320 450"

# make_cameras FOLDER: cameras.ini with three cameras. The first plays ten dark frames with the hot
# pixels above, so what a detection finds is known to the pixel; the second looks at a lit scene; the
# third is held by another program.
make_cameras() {
  local folder=$1 frame
  rm -rf "$folder"
  mkdir -p "$folder/frames"
  {
    printf 'P2\n640 480\n255\n'
    printf '%s\n' "$hot_pixels" | awk '
      { hot[$1 + 640 * $2] = 1 }
      END { for (i = 0; i < 640 * 480; ++i) print (i in hot) ? 200 : 8 }'
  } >"$folder/frame.pgm"
  for frame in 0 1 2 3 4 5 6 7 8 9; do
    convert "$folder/frame.pgm" -depth 8 -define png:color-type=0 "$folder/frames/dark$frame.png"
  done
  cat >"$folder/cameras.ini" <<'END'
[camera1]
serial=5100000001
model=Dark
devId=1
width=640
height=480
frameRate=10
recordedFrames=frames

[camera2]
serial=5100000002
model=Scene
devId=2
width=1280
height=960
sensor=bayer
frameRate=5

[camera3]
serial=5100000003
model=Held
devId=3
heldElsewhere=true
END
}
