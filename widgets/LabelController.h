#pragma once

#include "widgets/AttributedText.h"

#include <QObject>
#include <QPointer>
#include <functional>

class TextField;

/// What a volume holds, in bytes; both zero where nothing could be read.
struct VolumeSizes
{
    qint64 entire = 0;
    qint64 free = 0; ///< what a user without privileges may still write
};

/// The sizes of the start-up volume, the file system at "/". Takes one system call.
VolumeSizes startUpVolumeSizes();

/// Shows the free, used and total size of the start-up volume in three labels of a page. The page
/// owns the labels and passes them to this controller. Main thread only.
class LabelController final : public QObject
{
    Q_OBJECT

public:
    using Reader = std::function<VolumeSizes()>;

    explicit LabelController(QObject *parent = nullptr, Reader reader = startUpVolumeSizes);

    /// Bytes; zero before the first reloadData().
    qint64 entireSize() const { return m_sizes.entire; }
    void setEntireSize(qint64 bytes) { m_sizes.entire = bytes; }
    qint64 freeSize() const { return m_sizes.free; }
    void setFreeSize(qint64 bytes) { m_sizes.free = bytes; }

    TextField *freeLabel() const;
    void setFreeLabel(TextField *label);
    TextField *usedLabel() const;
    void setUsedLabel(TextField *label);
    TextField *totalLabel() const;
    void setTotalLabel(TextField *label);

    /// Reads the volume's sizes anew and shows them.
    void reloadData();

    /// Shows the sizes that were read last.
    void updateLabels();

    /// A size text with its number large and dark, and its unit (always the last two characters)
    /// small and light. A text of fewer than two characters is only unit.
    static AttributedText attributedSizeString(const QString &text);

private:
    Reader m_reader;
    VolumeSizes m_sizes;
    QPointer<TextField> m_freeLabel;
    QPointer<TextField> m_usedLabel;
    QPointer<TextField> m_totalLabel;
};
