#include "core/app_state.h"

#include <QLocale>

ColourList defaultColours()
{
    return {0,        0xC0C0C0, 0x008080, 0xC0C0C0, 0x808080, 0x0000FF, 0x0000FF,
            0x008000, 0x0000FF, 0xFF0000, 0x808000, 0x800080, 0x800080, 0x008000,
            0x0068E0}; // the compared trace: an orange that no other trace has, dark enough for paper
}

quint8 localeDecimalChar()
{
    // A fixed number formatted with one decimal in the user's locale tells the decimal character.
    return QLocale().toString(1.5, 'f', 1).contains(QLatin1Char(',')) ? 44 : 46;
}
