#pragma once

/// What is left to a process that confines itself.
enum class Confinement {
    /// Decodes what it has open. It reads and writes its open descriptors, and reads the system's
    /// fonts where the kernel can tell folders apart. It may start threads, but opens nothing else,
    /// talks to nobody, and starts no program.
    Decoder,
    /// A program of another maker in a sandbox, which decides on files and on the network. It may
    /// start some processes. It cannot leave the sandbox by calls that no such program needs.
    Guest,
    /// Plays a film in a sandbox: a guest that starts no process.
    Player,
};

/// What a process ends with that could not confine itself, and so has read nothing.
inline constexpr int kExitUnconfined = 77;

/// Confines the calling process, all its threads, and what it starts, for the rest of their lives.
/// False when the system cannot do this; then read nothing that cannot be trusted. Open and load
/// before what is needed after it. Needs no toolkit. Main thread, before it starts others.
bool confineThisProcess(Confinement confinement);
