// Replaced by the sources of this layer.
