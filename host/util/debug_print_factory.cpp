// Placeholder until the debug-print factory lands.
