# The one place that knows the product's version.
set(KESTRO_VERSION 0.1.0)
