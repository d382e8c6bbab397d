#include "platform/sheet/AlertPanel.h"

#include "platform/look/Fonts.h"
#include "platform/look/Images.h"
#include "platform/look/PanelButton.h"
#include "platform/look/WrappedLabel.h"
#include "platform/sheet/Sheet.h"

#include <QBoxLayout>
#include <QScrollBar>

namespace {

constexpr int kWidth = 500;
constexpr int kMargin = 28;
constexpr int kLowerMargin = 12; // the sheet's rounded edge adds to it
constexpr int kSymbolSize = 56;
constexpr int kSymbolGap = 22;
constexpr int kTextGap = 8;
constexpr int kButtonsGap = 22;
constexpr int kButtonGap = 6; // and the room for their rings
constexpr int kMessageSize = 16;
constexpr int kInformativeSize = 13;

QString symbolOf(AlertStyle style)
{
    switch (style) {
    case AlertStyle::Informational:
        return QStringLiteral("alertInformational");
    case AlertStyle::Warning:
        return QStringLiteral("alertWarning");
    case AlertStyle::Critical:
        return QStringLiteral("alertCritical");
    }
    Q_UNREACHABLE();
}

/// Holds the texts, scrolls them where the window has no room for all, and then takes the focus so
/// that they scroll by keyboard as well.
class TextArea final : public QScrollArea
{
public:
    explicit TextArea(QWidget *parent) : QScrollArea(parent)
    {
        setFrameShape(QFrame::NoFrame);
        setWidgetResizable(true);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        // The bar's menu runs an event loop of its own, and the alert may end meanwhile.
        verticalScrollBar()->setContextMenuPolicy(Qt::PreventContextMenu);
        viewport()->setAutoFillBackground(false);
        connect(verticalScrollBar(), &QScrollBar::rangeChanged, this, [this](int, int maximum) {
            setFocusPolicy(maximum > 0 ? Qt::StrongFocus : Qt::NoFocus);
        });
        setFocusPolicy(Qt::NoFocus);
    }
};

} // namespace

AlertPanel::AlertPanel(const Alert &alert)
{
    setAccessibleName(alert.messageText);
    setAccessibleDescription(alert.informativeText);
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(kMargin, kMargin, kMargin - PanelButton::kRing, kLowerMargin);
    column->setSpacing(kButtonsGap);
    auto *const row = new QHBoxLayout;
    row->setSpacing(kSymbolGap);
    row->setContentsMargins(0, 0, PanelButton::kRing, 0);
    column->addLayout(row, 1);
    addSymbol(*row, alert.style);
    addTexts(*row, alert);
    addButtons(*column, alert.buttons);
}

void AlertPanel::addSymbol(QBoxLayout &row, AlertStyle style)
{
    auto *const symbol = new QLabel(this);
    symbol->setPixmap(
        imageNamed(symbolOf(style), devicePixelRatioF(), QSize(kSymbolSize, kSymbolSize)));
    row.addWidget(symbol, 0, Qt::AlignTop);
}

void AlertPanel::addTexts(QBoxLayout &row, const Alert &alert)
{
    m_texts = new TextArea(this);
    auto *const texts = new QWidget(m_texts);
    auto *const area = new QVBoxLayout(texts);
    area->setContentsMargins({});
    auto *const block = new QWidget(texts);
    block->setMinimumHeight(kSymbolSize); // a short text stands beside the middle of the symbol
    area->addWidget(block);
    area->addStretch(1); // room that a taller sheet has is left below
    auto *const column = new QVBoxLayout(block);
    column->setContentsMargins({});
    column->setSpacing(kTextGap);
    column->addStretch();
    const auto add = [column, block](const QString &text, Typeface face, int size) {
        if (!text.isEmpty())
            column->addWidget(new WrappedLabel(text, interfaceFont(face, size), block));
    };
    add(alert.messageText, Typeface::Medium, kMessageSize);
    add(alert.informativeText, Typeface::Regular, kInformativeSize);
    column->addStretch();
    m_texts->setWidget(texts);
    texts->setAutoFillBackground(false);
    row.addWidget(m_texts, 1);
}

void AlertPanel::addButtons(QBoxLayout &column, const QList<AlertButton> &buttons)
{
    auto *const row = new QHBoxLayout;
    row->setSpacing(kButtonGap);
    row->setDirection(QBoxLayout::RightToLeft); // the first one stands at the right
    column.addLayout(row);
    bool hasDefault = false;
    for (int index = 0; index < buttons.size(); ++index) {
        const AlertButton &button = buttons.at(index);
        const bool destroys = button.role == AlertButtonRole::Destructive;
        auto *const made = new PanelButton(
            button.title, destroys ? PanelButtonLook::Destructive : PanelButtonLook::Plain, this);
        connect(made, &QPushButton::clicked, this, [this, index] { endSheet(*this, index); });
        row->addWidget(made);
        if (!destroys && !std::exchange(hasDefault, true)) {
            made->setDefault(true);
            made->setFocus();
        }
        if (button.role == AlertButtonRole::Cancel || (buttons.size() == 1 && !destroys))
            m_cancelButton = made;
    }
    row->addStretch();
}

QSize AlertPanel::sizeHint() const
{
    const int texts = kWidth - 2 * kMargin - kSymbolSize - kSymbolGap;
    const int upper = qMax(kSymbolSize, m_texts->widget()->layout()->heightForWidth(texts));
    const int buttons = layout()->itemAt(1)->sizeHint().height();
    return {kWidth, kMargin + upper + kButtonsGap + buttons + kLowerMargin};
}

void AlertPanel::cancel()
{
    if (m_cancelButton)
        m_cancelButton->click();
}
