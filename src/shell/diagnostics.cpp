#include "shell/diagnostics.h"

#include <cstdio>

#include "display/vlt.h"
#include "shell/session.h"

struct named_bit {
    uint32_t bit;
    const char *name;
};

static void print_bits(uint32_t word, const char *indent, const named_bit *names, int count)
{
    for (int i = 0; i < count; i++)
        if (word & names[i].bit)
            std::printf("%s%s\n", indent, names[i].name);
}

void debug_display_mode()
{
    static constexpr named_bit names[] = {
        { IFB, "IFB" }, { COLOR, "COLOR" }, { MIXED_VLT, "MIXED_VLT" }, { SPLIT_SCR, "SPLIT_SCR" },
        { SPLIT_DECOUPLED, "SPLIT_DECOUPLED" }, { DEFINING_SLICE, "DEFINING_SLICE" }, { TC, "TC" },
        { STATIC_VLT, "STATIC_VLT" }, { RED_BAND_ON, "RED_BAND_ON" }, { GRN_BAND_ON, "GRN_BAND_ON" },
        { BLU_BAND_ON, "BLU_BAND_ON" }, { GAMMA_DEF, "GAMMA_DEF" }, { REFETCHING_BAND, "REFETCHING_BAND" },
        { NEW_SESSION, "NEW_SESSION" },
    };
    std::printf("\ndisplay_mode: %x\n", display_mode);
    print_bits(display_mode, "    ", names, int(sizeof names / sizeof *names));
}

static void print_picture(const win_rec &window)
{
    std::printf("    data offset(x,y)=%d,%d\n", window.data_x, window.data_y);
    std::printf("    zoom=%f\n", window.zoom);
    std::printf("    rgb band numbers %d %d %d\n", window.red_band, window.green_band, window.blue_band);
    if (window.slice_band >= 0)
        std::printf("    density slice band %d\n", window.slice_band);
    if (window.linked_window >= 0)
        std::printf(window.flags & WIN_OVERVIEW ? "    overview of image in window %d\n" : "    split screen with window %d\n",
                    window.linked_window);
    std::printf("    active image area(x,y x,y)=%d,%d %d,%d\n", window.hist_area.x0, window.hist_area.y0, window.hist_area.x1,
                window.hist_area.y1);
}

static void print_window(int w)
{
    static constexpr named_bit names[] = {
        { WIN_DISPLAYED, "DISPLAYED" }, { WIN_COLLAPSED, "COLLAPSED" }, { WIN_PICTURE, "PICTURE" },
        { WIN_HISTOGRAM, "HISTOGRAM" }, { WIN_SPLOTS, "SPLOTS" }, { WIN_OVERVIEW, "OVERVIEW" },
    };
    const win_rec &window = windows[w];
    std::printf("\nwindow structure[%d]:\n", w);
    std::printf("    flags=%d\n", window.flags);
    print_bits(uint32_t(window.flags), "        ", names, int(sizeof names / sizeof *names));
    std::printf("    window name=%s\n", window.name);
    std::printf("    dit origin(x,y)=%d,%d\n", window.x, window.y);
    std::printf("    window size(x,y)=%d,%d\n", window.width, window.height);
    if (window.flags & WIN_PICTURE)
        print_picture(window);
    else if (window.flags & WIN_HISTOGRAM)
        std::printf("    histogram of image in window %d\n", window.linked_window);
}

void debug_window()
{
    for (int w = 0; w < WINDOWS; w++)
        if (windows[w].flags != 0 && !(windows[w].flags & RESERVED_WIN))
            print_window(w);
}

static const char *orientation_name(int code)
{
    static const char *const names[] = {
        "UL column major", "UR column major", "LL column major", "UR column major",
        "UL row major",    "UR row major",    "LL row major",    "UR row major",
    };
    return names[code & 7];
}

static const char *kind_name(uint32_t format)
{
    switch (format) {
    case KIND_RGB:              return "rgb";
    case KIND_RAW:              return "raw";
    case KIND_COT:              return "cot";
    case KIND_COT_INDEX:        return "cot index";
    case KIND_BIN:
    case KIND_BIN | KIND_TILED: return "bin";
    default:                    return nullptr;
    }
}

static void print_band(int n)
{
    const band_rec &band = bands[n];
    std::printf("\nband structure[%d]:\n", n);
    std::printf("    # bytes allocated for image=%u\n", band.alloc_bytes);
    std::printf("    image size(x,y)=%d,%d\n", band.x_size, band.y_size);
    std::printf("    orientation: %s\n", orientation_name(band.orientation));
    if (const char *kind = kind_name(band.format))
        std::printf("    file format: %s\n", kind);
    std::printf("    file subsampling increment=%d\n", band.increment);
    std::printf("    file area(x0,y0 x1,y1)=%d,%d %d,%d\n", band.file_x0, band.file_y0, band.file_x1, band.file_y1);
    for (const double(&row)[4] : band.xform)
        std::printf("    transformation matrix:% 12.2f % 12.2f % 12.2f % 12.2f\n", row[0], row[1], row[2], row[3]);
    std::printf("    file name=%s\n", band.file_name ? band.file_name : "");
    std::printf("    image_id=%u\n", band.image_id);
}

void debug_band()
{
    for (int n = 0; n < BANDS; n++)
        if (bands[n].alloc_bytes != 0)
            print_band(n);
}

// The right column walks on by itself: each line shows the next intensity that the mapped image has.
static void print_histograms(const int32_t *unmapped, const int32_t *mapped)
{
    std::printf("  UNMAPPED IMAGE                            MAPPED IMAGE\n");
    int right = 0;
    for (int left = 0; left < 255; left++) {          // 255 is left out, which is meant
        if (unmapped[left] == 0)
            continue;
        std::printf(unmapped[left] == 1 ? "  intensity %3d %8d occurrence       " : "  intensity %3d %8d occurrences      ", left,
                    unmapped[left]);
        while (right < 256 && mapped[right] == 0)
            right++;
        if (right < 256) {
            std::printf(mapped[right] == 1 ? "  intensity %3d %8d occurrence" : "  intensity %3d %8d occurrences", right, mapped[right]);
            right++;
        }
        std::printf("\n");
    }
}

void debug_hist()
{
    int band;
    if (band_select("Print histogram", &band) == 0)
        return;
    if (bands[band].hist_mapped)
        print_histograms(bands[band].hist_unmapped, bands[band].hist_mapped);
}
