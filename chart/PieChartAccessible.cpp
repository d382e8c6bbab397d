#include "chart/PieChartAccessible.h"

#include "chart/PieChart.h"
#include "slices/record/Info.h"

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QAccessibleWidget>
#include <QPointer>
#include <QWindow>
#include <cmath>

namespace {

/// The chart, or null while it is being destroyed: Qt goes on asking until its base widget is gone
/// too.
PieChart *livingChart(QObject *object)
{
    return qobject_cast<PieChart *>(object);
}

/// One slice. Lives as long as its chart's interface and answers for the slice that has the index
/// at that time.
class SliceAccessible final : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    SliceAccessible(PieChart &chart, int index) : m_object(&chart), m_index(index) {}

    bool isValid() const override { return layer() != nullptr; }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override
    {
        return chart() ? chart()->window()->windowHandle() : nullptr;
    }

    QAccessibleInterface *parent() const override
    {
        return QAccessible::queryAccessibleInterface(m_object);
    }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }

    QString text(QAccessible::Text text) const override;
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override;
    QAccessible::Role role() const override { return QAccessible::ListItem; }
    QAccessible::State state() const override;

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface
                   ? static_cast<QAccessibleActionInterface *>(this)
                   : nullptr;
    }
    QStringList actionNames() const override;
    void doAction(const QString &actionName) override;
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    PieChart *chart() const { return livingChart(m_object); }
    const SliceLayer *layer() const { return chart() ? chart()->layerOfSlice(m_index) : nullptr; }
    bool canPress() const
    {
        return chart() != nullptr && chart()->interaction().canSelectSlice(m_index);
    }

    QPointer<QObject> m_object;
    int m_index;
};

/// The chart: a list of its slices, followed by the widgets in it.
class ChartAccessible final : public QAccessibleWidget
{
public:
    explicit ChartAccessible(PieChart &chart) : QAccessibleWidget(&chart, QAccessible::List) {}
    ~ChartAccessible() override;

    int childCount() const override { return sliceCount() + QAccessibleWidget::childCount(); }
    QAccessibleInterface *child(int index) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *focusChild() const override;

private:
    PieChart *chart() const { return livingChart(object()); }
    int sliceCount() const { return chart() ? static_cast<int>(chart()->sliceLayers().size()) : 0; }
    QAccessibleInterface *slice(int index) const;

    mutable std::vector<QAccessible::Id> m_slices;
};

/// Name and size from the label, or the share where the label has no words.
QString labelText(const SliceLayer &layer)
{
    QStringList words{layer.infoLayer()->nameString(), layer.infoLayer()->sizeString()};
    words.removeAll(QString());
    return words.isEmpty() ? QStringLiteral("%1 percent").arg(std::lround(layer.percentage() * 100))
                           : words.join(QStringLiteral(", "));
}

QString SliceAccessible::text(QAccessible::Text text) const
{
    if (text != QAccessible::Name || !layer())
        return {};
    PieChartDataSource *source = chart()->dataSource();
    const auto name = source ? source->accessibleNameForSliceAtIndex(*chart(), m_index)
                             : std::optional<QString>();
    return name ? *name : labelText(*layer());
}

QRect SliceAccessible::rect() const
{
    if (!layer())
        return {};
    const QRect shape = chart()->sliceRect(m_index);
    return {chart()->mapToGlobal(shape.topLeft()), shape.size()};
}

QAccessible::State SliceAccessible::state() const
{
    QAccessible::State state;
    state.invalid = !isValid();
    if (!layer())
        return state;
    state.invisible = !chart()->isVisible();
    state.focusable = canPress();
    state.focused = chart()->hasFocus() && chart()->interaction().focusedSlice() == m_index;
    const auto info = layer()->infoLayer()->info();
    // The user switches a slice with a name on and off; a slice with a picture alone is a link.
    state.checkable = canPress() && info && !info->name().isEmpty();
    state.checked = state.checkable && info->isOn();
    return state;
}

QStringList SliceAccessible::actionNames() const
{
    return canPress() ? QStringList{pressAction(), setFocusAction()} : QStringList();
}

void SliceAccessible::doAction(const QString &actionName)
{
    if (!canPress())
        return;
    if (actionName == pressAction())
        chart()->interaction().selectSlice(m_index);
    else if (actionName == setFocusAction())
        chart()->interaction().focusSlice(m_index);
}

ChartAccessible::~ChartAccessible()
{
    for (const QAccessible::Id id : m_slices)
        QAccessible::deleteAccessibleInterface(id);
}

QAccessibleInterface *ChartAccessible::slice(int index) const
{
    // The registry owns the interfaces until it is told to delete them.
    while (std::ssize(m_slices) <= index)
        m_slices.push_back(QAccessible::registerAccessibleInterface(
            new SliceAccessible(*chart(), static_cast<int>(m_slices.size()))));
    return QAccessible::accessibleInterface(m_slices[static_cast<std::size_t>(index)]);
}

QAccessibleInterface *ChartAccessible::child(int index) const
{
    if (index < 0)
        return nullptr;
    return index < sliceCount() ? slice(index) : QAccessibleWidget::child(index - sliceCount());
}

QAccessibleInterface *ChartAccessible::childAt(int x, int y) const
{
    if (QAccessibleInterface *inner = QAccessibleWidget::childAt(x, y))
        return inner;
    if (!chart())
        return nullptr;
    const int index = chart()->getCurrentSelectedOnLocation(chart()->mapFromGlobal(QPoint(x, y)));
    return index != -1 ? slice(index) : nullptr;
}

int ChartAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    for (int i = 0; i < sliceCount(); ++i) {
        if (slice(i) == child)
            return i;
    }
    const int inner = QAccessibleWidget::indexOfChild(child);
    return inner < 0 ? -1 : inner + sliceCount();
}

QAccessibleInterface *ChartAccessible::focusChild() const
{
    if (chart() && chart()->hasFocus() && chart()->interaction().focusedSlice() != -1)
        return slice(chart()->interaction().focusedSlice());
    return QAccessibleWidget::focusChild();
}

QAccessibleInterface *madeInterface(const QString &, QObject *object)
{
    PieChart *chart = livingChart(object);
    return chart ? new ChartAccessible(*chart) : nullptr;
}

} // namespace

void installPieChartAccessibility()
{
    [[maybe_unused]] static const bool isInstalled = [] {
        QAccessible::installFactory(madeInterface);
        return true;
    }();
}
