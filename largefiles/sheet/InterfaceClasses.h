#pragma once

class InterfaceLoader;

/// Tells the loader the widget classes that the interface description of this folder names, except
/// those of widgets/.
void registerLargeFilesClasses(InterfaceLoader &loader);
