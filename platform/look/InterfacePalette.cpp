#include "platform/look/InterfacePalette.h"

namespace {

constexpr QColor kPaper(255, 255, 255);
constexpr QColor kShaded(247, 248, 250); ///< every other row
constexpr QColor kButton(244, 245, 247);
constexpr QColor kText(60, 63, 69);
constexpr QColor kQuietText(110, 113, 120);
constexpr QColor kDisabledText(180, 183, 189);
constexpr QColor kAccent(21, 106, 202);

} // namespace

QPalette interfacePalette()
{
    // The remaining shades, of bevels and the like, are derived from these two.
    QPalette colors(kButton, kPaper);
    colors.setColor(QPalette::Base, kPaper);
    colors.setColor(QPalette::AlternateBase, kShaded);
    colors.setColor(QPalette::ToolTipBase, kPaper);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        colors.setColor(role, kText);
        colors.setColor(QPalette::Disabled, role, kDisabledText);
    }
    colors.setColor(QPalette::PlaceholderText, kQuietText);
    colors.setColor(QPalette::Highlight, kAccent);
    colors.setColor(QPalette::Disabled, QPalette::Highlight, kDisabledText);
    colors.setColor(QPalette::HighlightedText, kPaper);
    colors.setColor(QPalette::Link, kAccent);
    colors.setColor(QPalette::LinkVisited, kAccent);
    return colors;
}
