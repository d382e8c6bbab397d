#pragma once

/// What may be relied on in a whole file system. What nobody vouches for is false, and is then
/// found out folder by folder.
struct FileSystemTraits
{
    /// A listing fills the buffer as far as it can: with room left for the longest entry, the
    /// folder is at its end. Servers, and file systems that are programs, may list less at a time.
    bool listsToTheEnd = false;
    /// In a folder of his own a user may do what the mode says. No server, no program, no label,
    /// and no mount that is read-only has a say; access lists do not speak of the owner.
    bool modeDecidesForOwner = false;
    /// Several threads remove the entries of a folder faster than one.
    bool gainsByThreads = true;
};

/// The traits of the file system on which an open folder lies. Any thread.
FileSystemTraits traitsOf(int folder);
