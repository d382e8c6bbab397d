#pragma once

#include "platform/files/FileUrl.h"
#include "slices/exclusions/PrefixSet.h"

#include <QHash>
#include <QStringList>

/// The files and folders that the user excluded from cleaning, as the settings keep them. A value,
/// implicitly shared: a copy costs nothing however many they are, one more costs a logarithm. Any
/// thread. Matching is done on raw bytes, never on decoded text: decoding would turn a name
/// that is no UTF-8 into another file's name.
class ExcludedPaths final
{
public:
    ExcludedPaths() = default;

    /// Takes the strings stored under VNTExcludedPathsString, in their order.
    static ExcludedPaths fromStoredStrings(const QStringList &strings);

    /// Adds one more, which was found on the disk.
    void add(const FileUrl &url);

    /// Those that could be read, in stored order, duplicates kept.
    const FileUrls &urls() const { return m_urls; }
    /// Those that could not be read. While there are any, it is unknown what the user wants kept:
    /// nothing may be removed.
    const QStringList &unparsable() const { return m_unparsable; }
    bool isEmpty() const { return m_urls.isEmpty() && m_unparsable.isEmpty(); }

    /// Whether each of these locations is excluded by exactly its path; no parent or prefix counts.
    /// False for no locations. Writes a log line for each match. The caller holds the access.
    bool containsExcludedFile(const FileUrls &urls) const;

    /// The rule on URL texts: whole when an exclusion's text is contained in the candidate's, on
    /// the way when it is the other way round. A folder's text ends in a slash, so that an excluded
    /// file "…/ab" also keeps "…/abc", while an excluded folder "…/ab/" does not.
    ///
    /// `path` is the candidate's raw path, with a trailing slash for a folder. All texts begin with
    /// "file:///" and hold three slashes in a row nowhere else, and percent-encoding is a prefix
    /// code, so that "contains" is "begins with" and may be asked of the raw bytes.
    ExclusionMatch matchByText(const QByteArray &path) const { return m_texts.match(path); }

    /// The rule on whole path components: whole at and below an exclusion, on the way above one.
    /// `path` is the candidate's raw path, with a trailing slash whatever it is.
    ExclusionMatch matchByPath(const QByteArray &path) const { return m_paths.match(path); }

private:
    FileUrls m_urls;
    QStringList m_unparsable;
    PrefixSet m_texts;              ///< raw paths, folders' with their trailing slash
    PrefixSet m_paths;              ///< raw paths, all with a trailing slash
    QHash<QByteArray, int> m_times; ///< how often a path is excluded
};
