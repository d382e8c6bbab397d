#pragma once

#include <QString>

/// The maker's pages: three that count usage, three that the result page opens. A value that is
/// handed to every class that needs it.
struct Addresses
{
    QString firstLaunchPing;
    QString launchPing;
    QString cleaningPing;
    QString facebook;
    QString twitter;
    QString homePage;
};

/// The addresses that this build was configured with (VANTOR_..._URL).
Addresses buildAddresses();
