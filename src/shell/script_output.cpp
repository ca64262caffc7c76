// script_output.cpp - the steps that print, draw and dump what there is, and look at files on disk.
#include <cstdio>
#include <sys/stat.h>

#include "services/screenshot.h"
#include "services/ws.h"
#include "shell/script_player.h"
#include "shell/script_values.h"
#include "shell/session.h"

// --- printing ------------------------------------------------------------------------------------------------

static void print_windows()
{
    for (int w = 0; w < WINDOWS; w++) {
        const win_rec &window = windows[w];
        if (script_window_counts(window))
            std::printf("%d %d %d %d %d %d %d %d %g %s\n", w, window.flags, window.x, window.y, window.width, window.height,
                        window.data_x, window.data_y, window.zoom, ws_title(w));
    }
}

static void print_bands()
{
    for (int n = 0; n < BANDS; n++) {
        const band_rec &band = bands[n];
        if (band.alloc_bytes != 0)
            std::printf("%d %d %d %d %u %s\n", n, band.x_size, band.y_size, band.increment, unsigned(band.format),
                        band.file_name ? band.file_name : "");
    }
}

static void print_pixel(const script_step &step)
{
    uint32_t value, rgb;
    if (script_pixel(step, 2, &value, &rgb))
        std::printf("%s\n", script_colour(rgb).c_str());
}

static void step_print(const script_step &step)
{
    const std::string &what = step.words[1];
    const size_t arguments = step.words.size() - 2;
    if (what == "message" && arguments == 1)
        std::printf("%s\n", msg_text(script_field(step, 2)));
    else if (what == "pixel" && arguments == 3)
        print_pixel(step);
    else if (what == "windows" && arguments == 0)
        print_windows();
    else if (what == "bands" && arguments == 0)
        print_bands();
    else
        script_fail("print message FIELD, pixel W X Y, windows or bands", "\"print " + what + "\"");
}

// --- pictures ------------------------------------------------------------------------------------------------

static void step_screenshot(const script_step &step)
{
    const bool whole = step.words.size() == 2 || step.words[2] == "frame";
    const int w = whole ? -1 : script_window(step, 2);
    if (ws_screenshot(step.words[1].c_str(), w) != 0)
        script_fail("a picture in " + step.words[1], "no way to write it");
}

static void write_rows(const char *file_name, const char *magic, const band_rec *const *planes, int count)
{
    std::FILE *file = std::fopen(file_name, "wb");
    if (!file) {
        script_fail(std::string("a file ") + file_name, "no way to write it");
        return;
    }
    const int width = planes[0]->x_size, height = planes[0]->y_size;
    std::fprintf(file, "%s\n%d %d\n255\n", magic, width, height);
    for (int y = 0; y < height; y++)
        for (int x = 0; x < width; x++)
            for (int i = 0; i < count; i++) {
                const bool bits = (planes[i]->format & KIND_MASK) == KIND_BIN;
                std::fputc(script_held_value(*planes[i], x, y) * (bits ? 255 : 1), file);
            }
    const bool written = !std::ferror(file);
    if (std::fclose(file) != 0 || !written)
        script_fail(std::string("a file ") + file_name, "an error in writing it");
}

static void step_dump(const script_step &step)
{
    if (const band_rec *band = script_band(step, 1))
        write_rows(step.words[2].c_str(), "P5", &band, 1);
}

static void step_dumprgb(const script_step &step)
{
    const band_rec *planes[3];
    for (int i = 0; i < 3; i++) {
        planes[i] = script_band(step, i + 1);
        if (!planes[i])
            return;
        if (planes[i]->x_size != planes[0]->x_size || planes[i]->y_size != planes[0]->y_size) {
            script_fail("three bands of one size", "different ones");
            return;
        }
    }
    write_rows(step.words[4].c_str(), "P6", planes, 3);
}

// --- files ---------------------------------------------------------------------------------------------------

static void step_file(const script_step &step)
{
    struct stat status;
    const bool there = stat(step.words[1].c_str(), &status) == 0;
    const std::string &wanted = step.words[2], found = there ? "exists" : "absent";
    if (wanted != "exists" && wanted != "absent")
        script_fail("exists or absent", "\"" + wanted + "\"");
    else if (wanted != found)
        script_fail(step.words[1] + " " + wanted, found);
}

static void step_same(const script_step &step)
{
    std::FILE *a = std::fopen(step.words[1].c_str(), "rb"), *b = std::fopen(step.words[2].c_str(), "rb");
    std::string found;
    if (!a || !b) {
        found = "no " + step.words[a ? 2 : 1];
    } else {
        long at = 0;
        int byte_a, byte_b;
        do {
            byte_a = std::fgetc(a);
            byte_b = std::fgetc(b);
            at++;
        } while (byte_a == byte_b && byte_a != EOF);
        if (byte_a != byte_b)
            found = "a difference at byte " + std::to_string(at);
    }
    if (a)
        std::fclose(a);
    if (b)
        std::fclose(b);
    if (!found.empty())
        script_fail(step.words[1] + " the same as " + step.words[2], found);
}

const script_verb script_output_verbs[] = {
    { "print", 1, -1, step_print, true },
    { "screenshot", 1, 2, step_screenshot, true },
    { "dump", 2, 2, step_dump, true },
    { "dumprgb", 4, 4, step_dumprgb, true },
    { "file", 2, 2, step_file, false },
    { "same", 2, 2, step_same, false },
    { nullptr, 0, 0, nullptr, false },
};
