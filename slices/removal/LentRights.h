#pragma once

#include <cstdint>
#include <optional>

class SystemCalls;

/// The rights of a folder to which the cleaning has given the right to change it, for as long as it
/// is emptied. Whoever holds this gives them back; at its end it does so itself, whatever has
/// happened. That needs the open folder: whoever closes it, or opens it anew, says so. It moves
/// from holder to holder. Any thread, one at a time.
class LentRights final
{
public:
    LentRights() = default; ///< nothing was changed
    /// `former`: what the folder had before.
    LentRights(const SystemCalls &calls, int folder, std::uint16_t former);
    ~LentRights();
    LentRights(LentRights &&other) noexcept;
    LentRights &operator=(LentRights &&other) noexcept;
    LentRights(const LentRights &) = delete;
    LentRights &operator=(const LentRights &) = delete;

    void folderIsOpenAs(int folder) { m_folder = folder; }
    void folderIsClosed() { m_folder = kClosed; }

    /// Gives them back now, if that was not tried yet.
    void giveBack() noexcept;
    /// The errno with which they could not be given back, or were not because the folder is closed;
    /// nothing when all is well.
    std::optional<int> failure() const;
    /// The folder is gone, or what is wrong with its rights was told.
    void forget();

private:
    static constexpr int kClosed = -1;

    const SystemCalls *m_calls = nullptr;
    int m_folder = kClosed;
    std::optional<std::uint16_t> m_former; ///< as long as it was not tried
    int m_error = 0;
};
