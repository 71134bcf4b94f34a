"""The small streaming model: an LSTM with CTC, in the form of a transducer that sherpa-onnx reads."""
