#pragma once

#include <QString>
#include <functional>

/// Runs a piece of a test in a forked child, whose exit status is the answer: the child may give
/// up its rights or its view of the file system without harm to the other tests. The piece must not
/// use QVERIFY; it answers a number from 0 to kFirstTrouble - 1 for the parent to look at.
constexpr int kFirstTrouble = 100;
constexpr int kCrashed = 100;
constexpr int kNoOrdinaryUser = 101;
constexpr int kNoDisk = 102;

int runInChild(const std::function<int()> &piece);

/// The same as an ordinary user: permissions mean nothing to root.
int runAsOrdinaryUser(const std::function<int()> &piece);

/// The same with a disk of `bytes` of its own, mounted at the folder; nobody else sees it.
int runWithTinyDisk(const QString &folder, int bytes, const std::function<int()> &piece);
