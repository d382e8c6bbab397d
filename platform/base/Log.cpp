#include "platform/base/Log.h"

Q_LOGGING_CATEGORY(logVantor, "vantor", QtInfoMsg)
Q_LOGGING_CATEGORY(logChart, "vantor.chart", QtWarningMsg)
