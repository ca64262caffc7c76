// write_form.h - the "Write Image" form: name, format, compression and area of the active window's image.
#pragma once

void write_image();
