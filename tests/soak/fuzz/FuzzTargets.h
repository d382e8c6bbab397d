#pragma once

#include <QByteArray>
#include <span>

/// What reads bytes that Vantor did not write, or that may have been damaged since. Each function
/// hands any bytes to one such reader and compares what it made of them with what the function
/// finds out by itself. It returns what is wrong, for people; nothing when all is well. One thread.
struct FuzzTarget
{
    const char *name;        ///< of its program and of its corpus, too
    const char *description; ///< for people
    int fewInputs;           ///< how many take a second or two
    QByteArray (*findingIn)(const QByteArray &input);
};

QByteArray findingInSettingsText(const QByteArray &input);
QByteArray findingInSettingsFile(const QByteArray &input);
QByteArray findingInExclusions(const QByteArray &input);
QByteArray findingInGrant(const QByteArray &input);
QByteArray findingInUserDirs(const QByteArray &input);
QByteArray findingInProfiles(const QByteArray &input);
QByteArray findingInSurvey(const QByteArray &input);
QByteArray findingInThumbnailerEntry(const QByteArray &input);
QByteArray findingInCachedThumbnail(const QByteArray &input);
QByteArray findingInDecoderAnswer(const QByteArray &input);
QByteArray findingInPlayerReport(const QByteArray &input);
QByteArray findingInInstanceCall(const QByteArray &input);

/// All of them.
std::span<const FuzzTarget> fuzzTargets();
