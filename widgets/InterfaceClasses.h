#pragma once

class InterfaceLoader;

/// Registers with the loader the widget classes of this folder that interface descriptions name.
void registerWidgetClasses(InterfaceLoader &loader);
