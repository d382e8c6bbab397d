#include "widgets/StyledLabel.h"

#include "platform/look/Fonts.h"

namespace {

struct Style
{
    Typeface face;
    int points;
    QColor color;
};

Style styleOf(StyledLabel::Role role)
{
    switch (role) {
    case StyledLabel::Title:
        return {Typeface::Thin, 40, QColor(60, 63, 69)};
    case StyledLabel::Body:
        return {Typeface::Light, 16, QColor(90, 93, 99)};
    case StyledLabel::Caption:
        return {Typeface::Regular, 13, QColor(106, 109, 115)};
    case StyledLabel::Quiet:
        return {Typeface::Regular, 12, QColor(115, 118, 124)};
    }
    Q_UNREACHABLE();
}

} // namespace

StyledLabel::StyledLabel(QWidget *parent) : QLabel(parent)
{
    setRole(Body);
}

void StyledLabel::setRole(Role role)
{
    m_role = role;
    const Style style = styleOf(role);
    setFont(interfaceFont(style.face, style.points));
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, style.color);
    setPalette(colors);
}
