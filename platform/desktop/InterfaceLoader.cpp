#include "platform/desktop/InterfaceLoader.h"

#include <QCoreApplication>
#include <QFile>
#include <QHash>
#include <QUiLoader>

#include <optional>

/// Reads descriptions with the program's classes in them, and notices classes that are neither the
/// program's nor the toolkit's.
class InterfaceLoader::Reader final : public QUiLoader
{
public:
    void add(const QString &className, const Factory &factory)
    {
        m_factories.insert(className, factory);
    }

    std::unique_ptr<QWidget> read(QIODevice &description)
    {
        m_unknownClass.reset();
        return std::unique_ptr<QWidget>(load(&description));
    }

    std::optional<QString> unknownClass() const { return m_unknownClass; }

private:
    QWidget *createWidget(const QString &className, QWidget *parent, const QString &name) override
    {
        if (const auto factory = m_factories.constFind(className);
            factory != m_factories.constEnd()) {
            QWidget *widget = (*factory)(parent);
            widget->setObjectName(name);
            return widget;
        }
        if (isToolkitClass(className))
            return QUiLoader::createWidget(className, parent, name);
        m_unknownClass = className;
        return new QWidget(parent);
    }

    /// "Line" is what descriptions call a frame that is drawn as one.
    bool isToolkitClass(const QString &className) const
    {
        return className == QLatin1String("Line") || availableWidgets().contains(className);
    }

    QHash<QString, Factory> m_factories;
    std::optional<QString> m_unknownClass;
};

namespace {

/// The reader loads every plugin for interface designers that it finds, a whole web engine among
/// them. While this lives there are none to find.
class WithoutPlugins final
{
public:
    WithoutPlugins() { QCoreApplication::setLibraryPaths({QStringLiteral(":/no-plugins")}); }
    ~WithoutPlugins() { QCoreApplication::setLibraryPaths(m_paths); }
    WithoutPlugins(const WithoutPlugins &) = delete;
    WithoutPlugins &operator=(const WithoutPlugins &) = delete;

private:
    QStringList m_paths = QCoreApplication::libraryPaths();
};

} // namespace

InterfaceLoader::InterfaceLoader(QString folder) : m_folder(std::move(folder))
{
    const WithoutPlugins aside;
    m_reader = std::make_unique<Reader>();
}

InterfaceLoader::~InterfaceLoader() = default;

void InterfaceLoader::registerClass(const QString &className, const Factory &factory)
{
    m_reader->add(className, factory);
}

LoadedInterface InterfaceLoader::load(const QString &className) const
{
    QFile file(QStringLiteral("%1/%2.ui").arg(m_folder, className));
    const auto failure = [&file](const QString &text) {
        return tl::make_unexpected(InterfaceError{file.fileName(), text});
    };
    if (!file.open(QIODevice::ReadOnly))
        return failure(file.errorString());
    std::unique_ptr<QWidget> interface = m_reader->read(file);
    if (!interface)
        return failure(m_reader->errorString());
    if (const auto unknown = m_reader->unknownClass())
        return failure(QStringLiteral("no widget class is registered as %1").arg(*unknown));
    QMetaObject::connectSlotsByName(interface.get());
    return interface;
}

QObject *outletNamed(QWidget &interface, const char *name, const QMetaObject &type)
{
    const QString wanted = QLatin1String(name);
    QObject *found =
        interface.objectName() == wanted ? &interface : interface.findChild<QObject *>(wanted);
    if (!found)
        qFatal("the interface %s has no %s", qPrintable(interface.objectName()), name);
    if (!type.cast(found))
        qFatal("%s of the interface %s is a %s, not a %s", name, qPrintable(interface.objectName()),
               found->metaObject()->className(), type.className());
    return found;
}
