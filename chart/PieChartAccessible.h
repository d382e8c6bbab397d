#pragma once

/// Shows every PieChart to assistive technology as a list with one item for each slice, which can
/// be read, focused and pressed. Called once by the program before it makes its pages; repeated
/// calls do nothing.
void installPieChartAccessibility();
