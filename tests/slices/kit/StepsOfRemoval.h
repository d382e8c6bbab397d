#pragma once

#include <QByteArrayView>

/// Whether this is one of the names that the cleaning itself gives to what it takes aside.
inline bool isPrivateName(QByteArrayView name)
{
    return name.startsWith(".vantor-aside") || name.startsWith(".vantor-slot.");
}

/// Whether this call is the one with which an entry leaves its name: the first step of its removal.
inline bool takesAside(QByteArrayView call, QByteArrayView name)
{
    return (call == "moveToFree" || call == "rename") && !isPrivateName(name);
}
