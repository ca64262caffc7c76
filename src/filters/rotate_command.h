// rotate_command.h - the command that turns the active image by a keyed angle.
#pragma once

// Asks for the angle, the resampling method and what it needs, and gives the bands of the active window the size of the turned image's
// bounding box, 0 outside the image. There is no undo. All bands of a window turn, also one shown as a single channel, or none does.
// 0 when done or given up; -1 on a failure, told in field 2, and without a word for a turn by 0 or 360 degrees.
int rotate_CMD();
