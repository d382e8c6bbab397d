"""The parts of bench/compare: what is measured (a module for each section), and how."""
