// undo.h - one level of undo over the pixels of bands. Before a command writes into a band the whole band is copied aside once;
// undo exchanges the copy and the band, so that a second undo brings the edit back. Look-up tables are not covered.
//
// An editing command calls undo_begin once when undo_enabled is set, and undo_snapshot before its first write. Filters instead
// write into undo_data of bands that undo_buffer has seen to, and end with undo_exchange_and_show.
//
// undo_data is as large as data (alloc_bytes), stays with the band until its size changes, and is freed by undo_free and band_free.
// Bands that the last edit did not touch keep older copies.
#pragma once

void undo_begin();                     // no band holds a copy for the running edit any more

// Copies the bands that have no copy for the running edit, in this order; numbers may be equal, and below 0 are skipped. Nothing with
// undo disabled or without an active window. Without memory it says so, beeps, and the edit goes on without a copy.
void undo_snapshot(int red, int green, int blue);

int  undo_buffer(int band);            // 1 when undo_data is there; else 0, and without memory the operator is told
void undo_free(int band);              // after a change of the band's size or pixels from elsewhere

// Exchanges pixels and copies of the distinct bands that have copies, and when any had: collects and redraws the histograms of the
// active window and repaints every picture of the three bands. How many were exchanged. current_window is -1 after painting.
int  undo_exchange_and_show(int red, int green, int blue);

void undo();
void toggle_undo();
void enable_undo();
void disable_undo();
