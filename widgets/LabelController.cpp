#include "widgets/LabelController.h"

#include "platform/base/ByteCount.h"
#include "platform/look/Fonts.h"
#include "widgets/TextField.h"

#include <filesystem>
#include <system_error>

namespace {

constexpr int kNumberSize = 27;
constexpr int kUnitSize = 20;
constexpr int kUnitLength = 2;
constexpr QColor kNumberColor(27, 27, 27);
constexpr QColor kUnitColor(141, 141, 141);

void show(TextField *label, qint64 bytes)
{
    if (label)
        label->setAttributedText(LabelController::attributedSizeString(stringFromByteCount(bytes)));
}

} // namespace

VolumeSizes startUpVolumeSizes()
{
    std::error_code error;
    const std::filesystem::space_info space = std::filesystem::space("/", error);
    if (error)
        return {};
    // "Available" leaves out the blocks that are kept for the superuser: for everyone else a volume
    // that has only those left is full.
    return {static_cast<qint64>(space.capacity), static_cast<qint64>(space.available)};
}

LabelController::LabelController(QObject *parent, Reader reader)
    : QObject(parent), m_reader(std::move(reader))
{
}

TextField *LabelController::freeLabel() const
{
    return m_freeLabel;
}

void LabelController::setFreeLabel(TextField *label)
{
    m_freeLabel = label;
}

TextField *LabelController::usedLabel() const
{
    return m_usedLabel;
}

void LabelController::setUsedLabel(TextField *label)
{
    m_usedLabel = label;
}

TextField *LabelController::totalLabel() const
{
    return m_totalLabel;
}

void LabelController::setTotalLabel(TextField *label)
{
    m_totalLabel = label;
}

void LabelController::reloadData()
{
    m_sizes = m_reader();
    updateLabels();
}

void LabelController::updateLabels()
{
    show(m_freeLabel, m_sizes.free);
    show(m_usedLabel, m_sizes.entire - m_sizes.free);
    show(m_totalLabel, m_sizes.entire);
}

AttributedText LabelController::attributedSizeString(const QString &text)
{
    const TextRun number{text.chopped(std::min<qsizetype>(kUnitLength, text.size())),
                         interfaceFont(Typeface::Light, kNumberSize), kNumberColor,
                         Qt::AlignHCenter};
    const TextRun unit{text.right(kUnitLength), interfaceFont(Typeface::Light, kUnitSize),
                       kUnitColor};
    return {number, unit};
}
