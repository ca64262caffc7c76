// colour.h - a colour of three levels, 0 to 255 and beyond while it is being mixed.
#pragma once

struct colour {
    float red, green, blue;
};

inline colour mix(colour a, colour b, float share_of_b)
{
    return { a.red + share_of_b * (b.red - a.red), a.green + share_of_b * (b.green - a.green),
             a.blue + share_of_b * (b.blue - a.blue) };
}

inline colour brighten(colour a, float factor)
{
    return { a.red * factor, a.green * factor, a.blue * factor };
}
