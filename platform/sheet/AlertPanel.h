#pragma once

#include "platform/sheet/AlertContent.h"

#include <QScrollArea>

class PanelButton;
class QBoxLayout;

/// The panel of one alert. Its buttons end the sheet with their own index. Main thread only.
class AlertPanel final : public QWidget
{
    Q_OBJECT

public:
    explicit AlertPanel(const Alert &alert);

    QSize sizeHint() const override;

    /// Presses the cancel button, where there is one.
    void cancel();

private:
    void addSymbol(QBoxLayout &row, AlertStyle style);
    void addTexts(QBoxLayout &row, const Alert &alert);
    void addButtons(QBoxLayout &column, const QList<AlertButton> &buttons);

    QScrollArea *m_texts = nullptr;
    PanelButton *m_cancelButton = nullptr;
};
