#include "services/sdl_tone.h"
#include "services/ws.h"

#include <SDL.h>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <numbers>
#include <string>
#include <unistd.h>

static constexpr int SAMPLE_RATE = 22050;
static constexpr int TONE_SAMPLES = SAMPLE_RATE * 90 / 1000;
static constexpr int FADE_SAMPLES = SAMPLE_RATE * 15 / 1000;   // no clicks at the ends
static constexpr double LOUDNESS = 2500;                       // of 32767

static SDL_AudioDeviceID device;
static bool tried;

static bool exists(const std::string &path)
{
    return access(path.c_str(), F_OK) == 0;
}

// A sound card or a sound server. Without either the audio libraries would say so on standard error, at length.
static bool machine_has_sound()
{
    const char *const runtime = getenv("XDG_RUNTIME_DIR");
    const std::string directory = runtime ? runtime : "";
    return getenv("PULSE_SERVER") || exists("/dev/snd")
        || (!directory.empty() && (exists(directory + "/pulse/native") || exists(directory + "/pipewire-0")));
}

// One attempt a session: a machine without sound is asked only once.
static bool device_is_open()
{
    if (tried)
        return device != 0;
    tried = true;
    if (!machine_has_sound() || SDL_InitSubSystem(SDL_INIT_AUDIO) != 0)
        return false;
    SDL_AudioSpec wanted {};
    wanted.freq = SAMPLE_RATE;
    wanted.format = AUDIO_S16SYS;
    wanted.channels = 1;
    wanted.samples = 1024;
    device = SDL_OpenAudioDevice(nullptr, 0, &wanted, nullptr, 0);
    if (device)
        SDL_PauseAudioDevice(device, 0);
    return device != 0;
}

static double pitch_of_kind(int kind)
{
    switch (kind) {
    case BEEP_INFO:  return 880;
    case BEEP_ERROR: return 330;
    default:         return 587;
    }
}

void tone_play(int kind)
{
    if (!device_is_open())
        return;
    int16_t samples[TONE_SAMPLES];
    const double step = 2 * std::numbers::pi * pitch_of_kind(kind) / SAMPLE_RATE;
    for (int i = 0; i < TONE_SAMPLES; i++) {
        const int from_end = i < TONE_SAMPLES - i ? i : TONE_SAMPLES - i;
        const double fade = from_end < FADE_SAMPLES ? double(from_end) / FADE_SAMPLES : 1.0;
        samples[i] = int16_t(LOUDNESS * fade * std::sin(step * i));
    }
    SDL_ClearQueuedAudio(device);      // quick beeps do not pile up
    SDL_QueueAudio(device, samples, sizeof samples);
}

void tone_close()
{
    if (device)
        SDL_CloseAudioDevice(device);
    device = 0;
    tried = false;
}
