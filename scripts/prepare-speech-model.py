#!/usr/bin/python3
"""Makes the folder of a speech model out of the published files of the Moonshine family.

    prepare-speech-model.py SOURCE TARGET --language en --licence MIT --origin TEXT
    prepare-speech-model.py --check TARGET

SOURCE holds llama-tokenizer.js and, for each size, SIZE/encoder.onnx and SIZE/decoder.onnx. The
decoders in TARGET differ in one thing: they also give the cross-attention of the layer from which
the times of words are read. The encoders compute the same, but in steps that take less time each.
"""

import argparse
import base64
import hashlib
import json
import pathlib
import re
import shutil
import sys

# The layer and head that follow the voice most closely, and by how many seconds their frames come
# late. Measured on English speech with known word times.
ALIGNMENT = {
    "tiny": {"layer": 4, "head": 6, "offset": 0.012},
    "base": {"layer": 5, "head": 5, "offset": 0.046},
}

# Into how many operations the longest one of the encoder is split.
CONVOLUTION_PARTS = 3

TOKENS_SHA256 = "0f97b4337921e6e7e9b4620fc73338ee570aecd3c16038bc23870a887e995045"


def sha256(data):
    return hashlib.sha256(data).hexdigest()


def write_tokens(source, target):
    """Token n is the piece on line n, counted from 0."""
    literal = re.search(r'llama_vocab_base64 = "([^"]+)"', source.read_text(encoding="utf-8"))
    tokens = base64.b64decode(literal.group(1))
    if sha256(tokens) != TOKENS_SHA256:
        sys.exit("the token table is not the one that is expected")
    target.write_bytes(tokens)


def write_encoder(source, target):
    """Splits the one operation that takes a tenth of a second on a whole chunk of audio.

    A run can be abandoned between two operations, never inside one.
    """
    import onnx

    model = onnx.load(str(source))
    nodes = model.graph.node
    places = [i for i, node in enumerate(nodes) if node.name == "/conv2/Conv"]
    if len(places) != 1:
        sys.exit(f"{source} has no second convolution")
    convolution = nodes[places[0]]
    data, weight, bias = convolution.input
    channels = next(i.dims[0] for i in model.graph.initializer if i.name == bias)
    new_nodes = []
    pieces = []

    def constant(name, value):
        model.graph.initializer.append(
            onnx.helper.make_tensor(name, onnx.TensorProto.INT64, [1], [value])
        )
        return name

    first_axis = constant("split/axis", 0)
    for part in range(CONVOLUTION_PARTS):
        prefix = f"split/{part}"
        start = constant(f"{prefix}/start", channels * part // CONVOLUTION_PARTS)
        end = constant(f"{prefix}/end", channels * (part + 1) // CONVOLUTION_PARTS)
        for tensor, name in ((weight, "weight"), (bias, "bias")):
            new_nodes.append(
                onnx.helper.make_node(
                    "Slice", [tensor, start, end, first_axis], [f"{prefix}/{name}"]
                )
            )
        piece = onnx.NodeProto()
        piece.CopyFrom(convolution)
        piece.name = f"{prefix}/Conv"
        del piece.input[:], piece.output[:]
        piece.input.extend([data, f"{prefix}/weight", f"{prefix}/bias"])
        piece.output.append(f"{prefix}/output")
        new_nodes.append(piece)
        pieces.append(piece.output[0])
    new_nodes.append(onnx.helper.make_node("Concat", pieces, list(convolution.output), axis=1))
    nodes.remove(convolution)
    for offset, node in enumerate(new_nodes):
        nodes.insert(places[0] + offset, node)
    onnx.save(model, str(target))


def write_decoder(source, target, layer):
    """Adds the output "cross_attention", float [1, heads, tokens, frames], to a merged decoder.

    Its If node holds one branch for the first token and one for those that follow, so the new
    output has to come out of both of them and out of the node.
    """
    import onnx

    model = onnx.load(str(source))
    branches = [node for node in model.graph.node if node.op_type == "If"]
    if len(branches) != 1:
        sys.exit(f"{source} is no merged decoder")
    for attribute in branches[0].attribute:
        branch = attribute.g
        name = f"layers.{layer}/encoder_attn/Softmax"
        softmax = [node for node in branch.node if node.op_type == "Softmax" and name in node.name]
        if len(softmax) != 1:
            sys.exit(f"{source} has no single attention {name}")
        branch.output.append(
            onnx.helper.make_tensor_value_info(
                softmax[0].output[0], onnx.TensorProto.FLOAT, ["batch", "heads", "tokens", "frames"]
            )
        )
    branches[0].output.append("cross_attention")
    model.graph.output.append(
        onnx.helper.make_tensor_value_info(
            "cross_attention", onnx.TensorProto.FLOAT, ["batch", "heads", "tokens", "frames"]
        )
    )
    onnx.save(model, str(target))


def recipe():
    """Models that were made by another version of this script are made again."""
    return sha256(pathlib.Path(__file__).read_bytes())


def prepare(arguments):
    source = arguments.folder
    target = arguments.target.with_name(arguments.target.name + ".new")
    shutil.rmtree(target, ignore_errors=True)
    target.mkdir(parents=True)
    write_tokens(source / "llama-tokenizer.js", target / "tokens.txt")
    for licence in source.glob("LICENSE*"):
        shutil.copy(licence, target)
    sizes = {}
    for size, alignment in ALIGNMENT.items():
        (target / size).mkdir()
        write_encoder(source / size / "encoder.onnx", target / size / "encoder.onnx")
        write_decoder(
            source / size / "decoder.onnx", target / size / "decoder.onnx", alignment["layer"]
        )
        sizes[size] = {
            "encoder": f"{size}/encoder.onnx",
            "decoder": f"{size}/decoder.onnx",
            "alignment": alignment,
        }
    files = sorted(path for path in target.rglob("*") if path.is_file())
    manifest = {
        "engine": "moonshine",
        "languages": [arguments.language],
        "licence": arguments.licence,
        "origin": arguments.origin,
        "recipe": recipe(),
        "tokens": "tokens.txt",
        "sizes": sizes,
        "files": {
            str(path.relative_to(target)): {
                "bytes": path.stat().st_size,
                "sha256": sha256(path.read_bytes()),
            }
            for path in files
        },
    }
    (target / "manifest.json").write_text(json.dumps(manifest, indent=2) + "\n", encoding="utf-8")
    # The folder appears as a whole: a program may be looking for it.
    shutil.rmtree(arguments.target, ignore_errors=True)
    target.rename(arguments.target)


def check(folder):
    """Exits with 0 if every file that the manifest names is there and right."""
    try:
        manifest = json.loads((folder / "manifest.json").read_text(encoding="utf-8"))
        if manifest["recipe"] != recipe():
            sys.exit(1)
        for name, file in manifest["files"].items():
            if sha256((folder / name).read_bytes()) != file["sha256"]:
                sys.exit(1)
    except (OSError, ValueError, KeyError):
        sys.exit(1)


def main():
    parser = argparse.ArgumentParser(description="Makes the folder of a speech model.")
    parser.add_argument("--check", action="store_true", help="see whether FOLDER is whole")
    parser.add_argument("--language", help="the language of the model, such as en")
    parser.add_argument("--licence", help="the licence of the models")
    parser.add_argument("--origin", help="where the models come from")
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("target", type=pathlib.Path, nargs="?")
    arguments = parser.parse_args()
    if arguments.check:
        check(arguments.folder)
    elif arguments.target:
        prepare(arguments)
    else:
        parser.error("TARGET is missing")


if __name__ == "__main__":
    main()
