// report_box.h - puts the toolkit's own box behind report(), and takes it away again.
#pragma once

void report_box_install();
void report_box_remove();
