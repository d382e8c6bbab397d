#include "app/navigation/ViewController.h"

ViewController::ViewController(QObject *parent) : QObject(parent)
{
}

ViewController::~ViewController()
{
    delete m_view;
}

QWidget *ViewController::view()
{
    if (!m_view) {
        m_view = loadView().release();
        viewDidLoad();
    }
    return m_view;
}

std::unique_ptr<QWidget> ViewController::loadView()
{
    return std::make_unique<QWidget>();
}
