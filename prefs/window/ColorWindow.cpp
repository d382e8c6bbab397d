#include "prefs/window/ColorWindow.h"

#include "platform/desktop/Compositing.h"
#include "platform/look/Fonts.h"
#include "platform/sheet/Sheet.h"
#include "prefs/window/ColorWindowFrameView.h"
#include "prefs/window/ColorWindowGeometry.h"
#include "prefs/window/EdgeGrip.h"
#include "prefs/window/WindowButton.h"
#include "prefs/window/WindowMenu.h"

#include <QLabel>
#include <QMenuBar>
#include <QMouseEvent>
#include <QShortcut>

namespace {

constexpr int kSheetDrop = 30;
constexpr int kTitleSize = 13;
constexpr float kTitleGrey = 0.35F;

/// The desktop may still minimise it and lists it among its windows.
constexpr Qt::WindowFlags kBorderless =
    Qt::Window | Qt::FramelessWindowHint | Qt::WindowSystemMenuHint | Qt::WindowMinimizeButtonHint;

} // namespace

ColorWindow::ColorWindow(QWidget *parent, Qt::WindowFlags)
    : QWidget(parent, kBorderless), m_drag(*this), m_isBlended(isCompositing()), m_shadow(*this)
{
    setAttribute(Qt::WA_TranslucentBackground, m_isBlended);
    setWindowTitle(QStringLiteral("Vantor"));
    setSheetDrop(*this, kSheetDrop);
}

QRectF ColorWindow::contentRectForFrameRect(const QRectF &frame)
{
    return ColorWindowGeometry::make(frame.size(), {}, {}).content;
}

void ColorWindow::setContentView(QWidget *view)
{
    if (view == m_childContentView)
        return;
    if (!m_frameView)
        buildChrome();
    if (m_childContentView)
        m_childContentView->setParent(nullptr);
    m_childContentView = view;
    if (!view)
        return;
    view->setParent(m_frameView);
    view->show();
    layOut();
}

void ColorWindow::buildChrome()
{
    m_frameView = new ColorWindowFrameView(this);
    m_frameView->setIsBlended(m_isBlended);
    m_frameView->setGeometry(contentsRect());
    addButtons();
    addTitle();
    addGrips();
    m_frameView->show();
    layOut();
}

void ColorWindow::addButtons()
{
    m_closeButton = new WindowButton(WindowButtonKind::Close, m_frameView);
    m_minimizeButton = new WindowButton(WindowButtonKind::Minimize, m_frameView);
    m_menuButton = new WindowButton(WindowButtonKind::Menu, m_frameView);
    m_menuButton->setVisible(m_menu != nullptr);
    connect(m_closeButton, &QAbstractButton::clicked, this, &QWidget::close);
    connect(m_minimizeButton, &QAbstractButton::clicked, this, &QWidget::showMinimized);
    connect(m_menuButton, &QAbstractButton::clicked, this, &ColorWindow::showMenu);
}

void ColorWindow::addTitle()
{
    m_titleField = new QLabel(QStringLiteral("Vantor"), m_frameView);
    m_titleField->setFont(interfaceFont(Typeface::Light, kTitleSize));
    m_titleField->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    QPalette colours = m_titleField->palette();
    colours.setColor(QPalette::WindowText, QColor::fromRgbF(kTitleGrey, kTitleGrey, kTitleGrey));
    m_titleField->setPalette(colours);
}

void ColorWindow::addGrips()
{
    for (const Qt::Edges edges :
         {Qt::Edges(Qt::LeftEdge), Qt::Edges(Qt::RightEdge), Qt::Edges(Qt::TopEdge),
          Qt::Edges(Qt::BottomEdge), Qt::LeftEdge | Qt::TopEdge, Qt::RightEdge | Qt::TopEdge,
          Qt::LeftEdge | Qt::BottomEdge, Qt::RightEdge | Qt::BottomEdge}) {
        m_grips.append(new EdgeGrip(edges, m_frameView));
        connect(m_grips.constLast(), &EdgeGrip::pressed, this,
                [this](QPoint pointer, Qt::Edges held) { m_drag.press(pointer, held); });
    }
}

void ColorWindow::layOut()
{
    if (!m_frameView)
        return;
    const QSize frame = contentsRect().size();
    m_frameView->setGeometry(contentsRect());
    const auto geometry =
        ColorWindowGeometry::make(frame, m_closeButton->size(), m_minimizeButton->size());
    m_closeButton->setGeometry(flipped(geometry.closeButton, frame.height()));
    m_minimizeButton->setGeometry(flipped(geometry.minimizeButton, frame.height()));
    const int right = frame.width() - m_closeButton->x() - m_menuButton->width();
    m_menuButton->move(right, m_closeButton->y());
    // Only until the window was seen. From then on the title keeps its width and its distance from
    // the upper left.
    if (!m_wasShown)
        m_titleField->setGeometry(flipped(geometry.titleField, frame.height()));
    if (m_childContentView)
        m_childContentView->setGeometry(flipped(geometry.content, frame.height()));
    const bool isResizable = minimumSize() != maximumSize() && !isMaximized() && !isFullScreen();
    for (EdgeGrip *grip : m_grips) {
        grip->place(frame);
        grip->setVisible(isResizable);
    }
    updateShape();
}

void ColorWindow::updateShape()
{
    const bool fillsScreen = isMaximized() || isFullScreen();
    m_frameView->setCorners(fillsScreen ? FrameCorners::Square : FrameCorners::Round);
    if (!m_isBlended)
        setMask(m_frameView->shape().toFillPolygon().toPolygon());
}

void ColorWindow::setMenuBar(QMenuBar *bar)
{
    if (bar->isNativeMenuBar()) {
        bar->setParent(this);
        return;
    }
    if (!m_menu)
        connect(new QShortcut(Qt::Key_F10, this), &QShortcut::activated, this,
                &ColorWindow::showMenu);
    delete m_menu;
    m_menu = new WindowMenu(bar, this);
    connect(m_menu, &QMenu::aboutToHide, this, [this] { m_menuButton->lookForPointer(); });
    if (m_menuButton)
        m_menuButton->show();
}

void ColorWindow::addFormChild(QWidget *child)
{
    if (auto *bar = qobject_cast<QMenuBar *>(child))
        setMenuBar(bar);
    else
        setContentView(child);
}

void ColorWindow::showMenu()
{
    if (m_menuButton)
        m_menu->popUpBelow(*m_menuButton);
}

QSize ColorWindow::sizeHint() const
{
    const QSize content = m_childContentView ? m_childContentView->sizeHint() : QSize();
    const QSizeF frame = QSizeF() - contentRectForFrameRect({}).size();
    return content.expandedTo({0, 0}) + frame.toSize();
}

void ColorWindow::paintEvent(QPaintEvent *)
{
    m_shadow.paint();
}

void ColorWindow::showEvent(QShowEvent *event)
{
    if (m_shadow.isWanted() && !m_wasShown)
        m_shadow.makeRoom();
    QWidget::showEvent(event);
    layOut();
    m_shadow.announce();
    m_wasShown = true;
}

void ColorWindow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layOut();
    if (m_wasShown)
        m_shadow.announce();
}

void ColorWindow::mainWindowChanged()
{
    for (WindowButton *button : {m_closeButton, m_minimizeButton, m_menuButton})
        if (button)
            button->update();
}

void ColorWindow::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ActivationChange)
        mainWindowChanged();
    if (event->type() == QEvent::WindowStateChange) {
        setContentsMargins(m_wasShown ? m_shadow.margins() : QMargins());
        layOut();
    }
}

// Gets what no view in the window wanted: presses on the background.
void ColorWindow::mousePressEvent(QMouseEvent *event)
{
    if (m_canMove && event->button() == Qt::LeftButton)
        m_drag.press(event->globalPosition().toPoint(), {});
}

void ColorWindow::mouseMoveEvent(QMouseEvent *event)
{
    m_drag.follow(event->globalPosition().toPoint());
}

void ColorWindow::mouseReleaseEvent(QMouseEvent *)
{
    m_drag.release();
}
