# The one place that knows the product's version, and that of the interface between programs and the shared libraries:
# docs/packages.md says when it is raised.
set(KESTRO_VERSION 0.1.0)
set(KESTRO_SOVERSION 0)
