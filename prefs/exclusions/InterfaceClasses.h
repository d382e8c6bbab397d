#pragma once

class InterfaceLoader;

/// Tells the loader the widget classes that the interface descriptions of this folder name, and the
/// borderless window for those of others.
void registerPrefsClasses(InterfaceLoader &loader);
