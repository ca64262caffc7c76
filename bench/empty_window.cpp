// empty_window.cpp - the least that a program with a window has to do before its first frame: what Kestrel's start is
// measured against (bench/start_time.py). The window is filled with one colour and stays until it is closed.
#include <SDL.h>

int main()
{
    SDL_SetHint(SDL_HINT_FRAMEBUFFER_ACCELERATION, "0");
    if (SDL_Init(SDL_INIT_VIDEO) != 0)
        return 1;
    SDL_Window *const window = SDL_CreateWindow("kestrel", 0, 0, 1280, 1024, 0);
    SDL_Surface *const surface = window ? SDL_GetWindowSurface(window) : nullptr;
    if (!surface)
        return 1;
    SDL_FillRect(surface, nullptr, SDL_MapRGB(surface->format, 60, 110, 159));
    SDL_UpdateWindowSurface(window);
    for (SDL_Event event; SDL_WaitEvent(&event) && event.type != SDL_QUIT;)
        ;
    SDL_Quit();
    return 0;
}
