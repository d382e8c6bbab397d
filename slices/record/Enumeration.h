#pragma once

#include <QStringList>

/// Names as a sentence has them: "Chromium, Edge and Firefox". Empty for none.
QString enumerated(const QStringList &names);
