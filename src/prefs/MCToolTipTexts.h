#pragma once

#include <span>

// One control's help text, keyed by the name the window binds it to.
struct MCToolTipText
{
    const char *name;
    const char *text;
};

// The fixed help texts of the main window, the preset editor and the
// preferences panel, in window order.
namespace MCToolTipTexts {
std::span<const MCToolTipText> all();
}
