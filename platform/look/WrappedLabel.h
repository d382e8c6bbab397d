#pragma once

#include <QLabel>
#include <QTextLayout>

/// A label of plain text that shows all of it at any width: it also breaks a word that is wider
/// than the label (a path, a name). Lines stand a little apart. Main thread only.
class WrappedLabel final : public QLabel
{
    Q_OBJECT

public:
    WrappedLabel(const QString &text, const QFont &font, QWidget *parent = nullptr);

    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, 0}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    /// Breaks the text into lines; returns their height.
    double breakLines(QTextLayout &layout, int width) const;
};
