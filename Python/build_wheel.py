"""Builds the wheel. The package is plain Python, so this needs no other build tool, and pip no network."""
import base64
import hashlib
import pathlib
import re
import zipfile

HERE = pathlib.Path(__file__).resolve().parent
FOLDER = HERE / "quorlin"


def _metadata():
    text = (HERE / "pyproject.toml").read_text()
    value = {key: re.search(rf'^{key} = "(.*)"$', text, re.M)[1]
             for key in ("name", "version", "description", "requires-python")}
    lines = ["Metadata-Version: 2.1", f"Name: {value['name']}", f"Version: {value['version']}",
             f"Summary: {value['description']}", f"Requires-Python: {value['requires-python']}"]
    return value["version"], "\n".join(lines) + "\n"


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    """Called by pip."""
    version, metadata = _metadata()
    info = f"quorlin-{version}.dist-info"
    files = {f"quorlin/{path.name}": path.read_bytes()
             for path in sorted(FOLDER.iterdir()) if path.suffix == ".py" or path.name == "py.typed"}
    files[f"{info}/METADATA"] = metadata.encode()
    files[f"{info}/WHEEL"] = b"Wheel-Version: 1.0\nGenerator: quorlin\nRoot-Is-Purelib: true\nTag: py3-none-any\n"
    record = ""
    for name, data in files.items():
        digest = base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()
        record += f"{name},sha256={digest},{len(data)}\n"
    files[f"{info}/RECORD"] = (record + f"{info}/RECORD,,\n").encode()
    wheel = f"quorlin-{version}-py3-none-any.whl"
    with zipfile.ZipFile(pathlib.Path(wheel_directory) / wheel, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, data in files.items():
            archive.writestr(zipfile.ZipInfo(name), data)
    return wheel
