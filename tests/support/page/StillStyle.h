#pragma once

#include <QProxyStyle>

/// The style of a desktop whose user wants no animations: every movement is over at once.
class StillStyle final : public QProxyStyle
{
public:
    StillStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *data) const override
    {
        return hint == SH_Widget_Animation_Duration
                   ? 0
                   : QProxyStyle::styleHint(hint, option, widget, data);
    }
};
