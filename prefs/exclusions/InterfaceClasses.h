#pragma once

class InterfaceLoader;

/// Tells the loader the widget classes that the interface descriptions of this folder name, but for
/// those of widgets/, and the borderless window for the descriptions of others.
void registerPrefsClasses(InterfaceLoader &loader);
