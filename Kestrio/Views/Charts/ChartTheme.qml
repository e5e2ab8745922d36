pragma Singleton

import Kestrio.Design

// The colours of all charts, from the theme.
ChartPalette {
    categories: categoryNames.map(name => Theme.category(name))
    grid: Theme.separator
    ink: Theme.text
    label: Theme.textTertiary
}
