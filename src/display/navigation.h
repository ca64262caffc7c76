// navigation.h - the commands that move and zoom the view.
#pragma once

void center();
void zoom_in();
void zoom_out();
void area();
void fit();
void zoom_out_full();
void set_xform_mtx();
void clear_xform_mtx();
void clear_orientation();
