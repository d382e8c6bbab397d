#include "slices/plan/RefusalText.h"

RefusalText refusalText(RefusalReason reason)
{
    switch (reason) {
    case RefusalReason::UnknownExclusions:
        return {"nobody knows which paths are excluded, so nothing was cleaned",
                "nobody knows what is excluded"};
    case RefusalReason::UnparsableExclusion:
        return {"this excluded path cannot be read, so nothing was cleaned",
                "excluded, but not a path that can be read"};
    case RefusalReason::UnresolvedExclusion:
        return {"something excluded inside it cannot be found any more",
                "something excluded inside cannot be found"};
    case RefusalReason::OutsideGrant:
        return {"it is not in your home folder", "not in the granted folder"};
    case RefusalReason::GrantedFolder:
        return {"it is your home folder itself", "the granted folder itself"};
    case RefusalReason::Link:
        return {"it is a link", "a link, or reached through one"};
    case RefusalReason::NotAFolder:
        return {"it is not a folder", "not a folder"};
    case RefusalReason::NotAFile:
        return {"it is not a plain file", "not a plain file"};
    case RefusalReason::OtherFileSystem:
        return {"it is on another disk", "on another file system"};
    case RefusalReason::Unreadable:
        return {"it could not be read", "cannot be read"};
    case RefusalReason::PartlyListed:
        return {"it could not be read to the end", "cannot be read to its end"};
    case RefusalReason::Changed:
        return {"it was changed meanwhile", "changed meanwhile"};
    case RefusalReason::ChangedLater:
        return {"it came or was changed after you had confirmed", "changed after the confirmation"};
    case RefusalReason::Unconfined:
        return {"the system refused to confine its cleaning", "its cleaning cannot be confined"};
    case RefusalReason::InUse:
        return {"a program is using it", "used by a program"};
    case RefusalReason::StillNeeded:
        return {"what it belongs to is still there", "its item is still there"};
    case RefusalReason::PerhapsNeeded:
        return {"what it belongs to was perhaps still on its way to the Trash",
                "its item was perhaps still on its way to the trash"};
    case RefusalReason::RightsChanged:
        return {"it was made writable to be emptied, and its own rights could not be set again",
                "its rights could not be given back"};
    case RefusalReason::OutOfMemory:
        return {"there was not enough memory to go on", "not enough memory"};
    }
    Q_UNREACHABLE();
}
