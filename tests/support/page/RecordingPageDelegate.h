#pragma once

#include "app/navigation/VNTViewControllerDelegate.h"

#include <QList>
#include <QObject>
#include <QVariant>

/// Replaces the window: records where a page asked to go.
class RecordingPageDelegate final : public QObject, public VNTViewControllerDelegate
{
public:
    struct Move
    {
        bool isForward = false;
        QVariant data;
    };

    void willGoForward(VNTViewController &, bool forward, const QVariant &data) override
    {
        moves.append({forward, data});
    }

    QList<Move> moves;
};
