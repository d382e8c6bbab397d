#pragma once

class InterfaceLoader;

/// Tells the loader every widget class of the program that an interface description may name, and
/// assistive technology how to read the pie.
void registerInterfaceClasses(InterfaceLoader &loader);
