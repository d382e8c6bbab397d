#pragma once

#include <QObject>

/// Deleter for smart pointers to objects that may still be in one of their own events.
struct DeleteLater
{
    void operator()(QObject *object) const { object->deleteLater(); }
};
