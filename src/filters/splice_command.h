// splice_command.h - the command that warps a polygon of one image onto another.
#pragma once

// Asks for the two images, the area on the output image and matched points, and resamples the input image into the area through the affine
// model fitted to the points. The output band is written in place: there is no undo. Nothing without an active window.
// 0 when done or given up, -1 on a failure, told in field 2.
int splice2();
