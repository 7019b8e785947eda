#pragma once

/// Marks what libkestro_hvl_rng.so exports.
#define KESTRO_HVL_API __attribute__((visibility("default")))
