// PLACEHOLDER: to be written.
