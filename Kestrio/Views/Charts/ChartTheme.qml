pragma Singleton

import Kestrio.Charts
import Kestrio.Design

// The colours of all charts, from the theme.
ChartPalette {
    categories: Array.from(categoryNames, name => Theme.category(name))
    grid: Theme.separator
    ink: Theme.text
    label: Theme.textTertiary
}
