#include "app/navigation/VNTViewController.h"

#include "platform/base/Log.h"
#include "platform/desktop/InterfaceLoader.h"

#include <stdexcept>

VNTViewController::VNTViewController(const InterfaceLoader &loader, QObject *parent)
    : ViewController(parent), m_loader(loader)
{
}

void VNTViewController::initWithNibName(const QString &nibName) const
{
    const char *const className = metaObject()->className();
    qCCritical(logVantor, "Illegal call made to -[%s initWithWindowNibName:], call init instead",
               className);
    throw std::logic_error(std::string(className) +
                           " does not recognise initWithNibName:bundle: (" + nibName.toStdString() +
                           ")");
}

void VNTViewController::goForward(const QVariant &data)
{
    if (VNTViewControllerDelegate *const wizard = delegate())
        wizard->willGoForward(*this, true, data);
}

void VNTViewController::goBack()
{
    if (VNTViewControllerDelegate *const wizard = delegate())
        wizard->willGoForward(*this, false, {});
}

std::unique_ptr<QWidget> VNTViewController::loadView()
{
    viewWillLoad();
    LoadedInterface interface = m_loader.load(QString::fromLatin1(metaObject()->className()));
    if (!interface)
        qFatal("%s: %s", qPrintable(interface.error().file), qPrintable(interface.error().text));
    return std::move(*interface);
}
