#pragma once

class InterfaceLoader;

/// Tells the loader the widget classes of this folder that interface descriptions name.
void registerWidgetClasses(InterfaceLoader &loader);
