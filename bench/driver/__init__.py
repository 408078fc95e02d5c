# SPDX-License-Identifier: MIT
"""Runs the measurements of bench/ and reports them."""
