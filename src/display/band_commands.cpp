// Which bands are in view, and which band is red, green and blue.
#include <cstring>
#include <utility>

#include "display/colour_commands.h"
#include "display/paint.h"
#include "display/picture_windows.h"
#include "display/vlt.h"
#include "enhance/histogram.h"
#include "shell/prompt.h"
#include "shell/session.h"
#include "store/bands.h"

// --- the band prompt -----------------------------------------------------------------------------------------

static int band_of_point()
{
    if (hist_window < 0 || pick_window != hist_window)
        return 0;
    const screen_layout &l = layout;
    if (pick_y >= l.hist_red_top && pick_y <= l.hist_red_bottom)
        return BAND_RED;
    if (pick_y >= l.hist_green_top && pick_y <= l.hist_green_bottom)
        return BAND_GREEN;
    return pick_y >= l.hist_blue_top && pick_y <= l.hist_blue_bottom ? BAND_BLUE : 0;
}

static int band_of_keyin()
{
    switch (keyin_buffer[0]) {
    case 'r': case 'R': return BAND_RED;
    case 'g': case 'G': return BAND_GREEN;
    case 'b': case 'B': return BAND_BLUE;
    default: return 0;
    }
}

int band_select(const char *title, int *band_out)
{
    if (active_window < 0)
        return 0;
    int colour = display_mode & COLOR ? 0 : BAND_RED;
    while (!colour) {
        const int answer = prompt_input(title, "Select band (point in histogram window or keyin)", PROMPT_KEYIN);
        if ((answer & (INPUT_RESET | INPUT_QUIT)) || active_window < 0)
            return 0;
        colour = answer & INPUT_POINT ? band_of_point() : answer & INPUT_KEYIN ? band_of_keyin() : 0;
    }
    const win_rec &view = windows[active_window];
    *band_out = colour == BAND_RED ? view.red_band : colour == BAND_GREEN ? view.green_band : view.blue_band;
    return colour;
}

static void clear_prompt()
{
    msg_clear(MSG_TITLE);
    msg_clear(MSG_PROMPT);
    msg_clear(MSG_KEYIN);
}

// --- bands on and off ----------------------------------------------------------------------------------------

constexpr uint32_t ALL_BANDS_ON = RED_BAND_ON | GRN_BAND_ON | BLU_BAND_ON;

static uint32_t band_on_bit(int colour)
{
    return uint32_t{RED_BAND_ON} << (colour - BAND_RED);
}

static int bands_shown()
{
    return __builtin_popcount(display_mode & ALL_BANDS_ON);
}

void band_on()
{
    int band;
    while ((display_mode & COLOR) && bands_shown() < 3) {
        const int colour = band_select("Color band on", &band);
        if (!colour)
            break;
        display_mode |= band_on_bit(colour);
        vlt_program();
    }
    clear_prompt();
}

void band_off()
{
    int band;
    while ((display_mode & COLOR) && bands_shown() > 1) {  // one band always stays on
        const int colour = band_select("Color band off", &band);
        if (!colour)
            break;
        display_mode &= ~band_on_bit(colour);
        vlt_program();
    }
    clear_prompt();
}

// --- exchanging bands ----------------------------------------------------------------------------------------

typedef int16_t win_rec::*band_link;

// The band that moves to red takes the file name along when only the other one has it: the name of the picture is that of red.
static void move_names_to_red(band_rec *to, band_rec *from)
{
    static constexpr int LABEL_MOVED = 20;
    if (to == from || !to->file_name || !from->file_name || to->file_name[0] || !from->file_name[0])
        return;
    std::memcpy(to->file_name, from->file_name, BAND_NAME_SIZE);
    std::memcpy(to->label, from->label, LABEL_MOVED);
    to->label[LABEL_MOVED] = 0;
    from->file_name[0] = 0;
    from->label[0] = 0;
}

static void paint_whole(int w)
{
    current_window = w;
    paint_window(0, 0, windows[w].width, windows[w].height);
}

static void swap_bands(const char *title, band_link first, band_link second)
{
    if (active_window < 0)
        return;
    msg_put(MSG_TITLE, MSG_CENTRED, title);
    const int overview = window_overview_of(active_window);
    win_rec &view = windows[active_window];
    if (first == &win_rec::red_band && view.*first >= 0 && view.*second >= 0)
        move_names_to_red(&bands[view.*second], &bands[view.*first]);
    for (const int w : { int(active_window), overview })
        if (w >= 0) {
            std::swap(windows[w].*first, windows[w].*second);
            window_set_changed(w, 1);
        }
    draw_hist(-1, -1, -1, -1);
    if (mono_channel != 0 || (display_mode & TC))
        vlt_program();
    window_set_name(active_window);
    paint_whole(active_window);
    if (overview >= 0) {
        window_set_name(overview);
        paint_whole(overview);
    }
    msg_clear(MSG_TITLE);
}

void swap_red_green()
{
    swap_bands("Swap red and green bands", &win_rec::red_band, &win_rec::green_band);
}

void swap_red_blue()
{
    swap_bands("Swap red and blue bands", &win_rec::red_band, &win_rec::blue_band);
}

void swap_green_blue()
{
    swap_bands("Swap green and blue bands", &win_rec::green_band, &win_rec::blue_band);
}

// --- a colour image shown as one of its bands ------------------------------------------------------------------

int32_t mono_channel;

// Brings the band of a channel to red in all pictures; doing it again undoes it.
static void exchange_channel(int channel)
{
    if (channel < 2)
        return;
    const band_link link = channel == 2 ? &win_rec::green_band : &win_rec::blue_band;
    for (int w = 0; w < WINDOWS; w++)
        if (is_picture(w))
            std::swap(windows[w].red_band, windows[w].*link);
}

static void show_channel(int channel, const char *title)
{
    if (!(display_mode & COLOR) && mono_channel == 0)
        return;
    msg_put(MSG_TITLE, MSG_CENTRED, title);
    exchange_channel(mono_channel);
    exchange_channel(channel);
    mono_channel = channel;
    display_mode &= ~uint32_t{COLOR};
    display_rebuild();
    msg_clear(MSG_TITLE);
}

void red_to_mono()
{
    show_channel(1, "Red to mono");
}

void green_to_mono()
{
    show_channel(2, "Green to mono");
}

void blue_to_mono()
{
    show_channel(3, "Blue to mono");
}

void mono_to_color()
{
    if (mono_channel == 0)
        return;
    msg_put(MSG_TITLE, MSG_CENTRED, "Mono to color");
    display_mode |= COLOR;
    exchange_channel(mono_channel);
    mono_channel = 0;
    display_rebuild();
    msg_clear(MSG_TITLE);
}
