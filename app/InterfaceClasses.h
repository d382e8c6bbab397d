#pragma once

class InterfaceLoader;

/// Tells the loader every widget class of the program that an interface description may name.
void registerInterfaceClasses(InterfaceLoader &loader);
