#pragma once

class InterfaceLoader;

/// Tells the loader the widget classes that the interface descriptions of this folder name, except
/// those of widgets/, and the borderless window for the descriptions of other folders.
void registerPrefsClasses(InterfaceLoader &loader);
