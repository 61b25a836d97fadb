"""A plain model of everything that a host can see of the module.

Reading order: output, failures, memory, text, values, lines, headers, settings, cue, tokenizer, tree,
parser, module. Each file is one step of the way of a chunk, written for clarity only: work is
repeated, nothing is cached, and no state is kept that a host cannot notice.
"""
